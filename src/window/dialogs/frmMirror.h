#pragma once

/// Asks how to mirror the target mesh, and mirrors it on OK. The caller redraws.
void ShowMirrorDialog();
