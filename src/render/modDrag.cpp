#include "modDrag.h"

void ResetDrag()
{
    ToolMode = 0;
    MouseButton = 0;
    MouseLastX = 0;
    MouseLastY = 0;
    MouseStartX = 0;
    MouseStartY = 0;
}
