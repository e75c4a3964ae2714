#include "interaction/modTools.h"

void ResetTools()
{
    ToolMode = 0;
    MouseButton = 0;
    MouseLastX = 0;
    MouseLastY = 0;
    MouseStartX = 0;
    MouseStartY = 0;
}
