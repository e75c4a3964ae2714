#pragma once

// The reports of the menu "Statistics". Each writes a listing of the scene to the Info Log and shows it.

void ReportMeshes();
void ReportMaterials();
void ReportInstances();
void ReportBones();
void ReportMeshNames();
void ReportMaterialNames();
void ReportInstanceNames();
void ReportBoneNames();
void ReportTextureFilenames();
