#pragma once

#include <string>

#include "support/model_text.h"

/// A model with what travels badly: two faces on the same vertices, one that names a vertex twice, vertices in one place
/// (8 is 4 with other texture coordinates, 6 is 5 with another bone), entries that no face names, a long normal.
inline const std::string BeastText =
    CrLf("material \"Bark\"|{|}|material \"Fin\"|{| bumpmap = \"b.bmp\"|}|bone \"Hip01\"|{| position = (0,1,0)|}|"
         "bone \"Leg02\"|{| position = (1,0,0.5)| rotation = (0,0,90)| mass = 3|}|bone \"$j$Hip01\"|{|}|"
         "skin \"Beast\"|{| m = \"Bark\"| m = \"Fin\"| v = (0,0,0),1| v = (1,0,0),2| v = (0,1,0),-1| v = (1,1,0),2|"
         " v = (2,1,0),2| v = (2,1,0),1| v = (9,9,9),2| v = (1,1,0),2| t = (0,0)| t = (1,0)| t = (0,1)| t = (0.3,0.7)|"
         " t = (0.5,0.25)| n = (0,0,1)| n = (0,0,-1)| n = (0,0,3)| f = (1,2,3),(1,2,3),(1,1,1),1|"
         " f = (3,2,1),(3,2,1),(2,2,2),1| f = (2,4,3),(2,1,3),(1,1,1),2| f = (2,5,4),(2,3,1),(3,1,1),1|"
         " f = (6,8,2),(1,4,2),(1,1,1),1| f = (2,2,3),(2,1,3),(1,1,1),2|}|"
         "skin \"$Beast\"|{| v = (0,0,0),1| v = (2,0,0),1| v = (0,2,0),-1| t = (0,0)| n = (0,0,1)|"
         " f = (1,2,3),(1,1,1),(1,1,1),0|}|"
         "mesh \"Eye\"|{| m = \"Bark\"| v = (0,0,0)| v = (0,0,1)| v = (0,1,0)| t = (0,0)| n = (1,0,0)|"
         " f = (1,2,3),(1,1,1),(1,1,1),1|}|"
         "instance \"Beast\"|{| mesh = \"Beast\"| position = (0,0,2)| scale = 2|}|"
         "instance \"Left\"|{| mesh = \"Eye\"| rotation = (0,90,0)| scale = 1|}|"
         "instance \"Right\"|{| mesh = \"Eye\"| position = (3,0,0)| rotation = (10,20,30)| scale = 0.5|}|");
