; The installer: for this user or, with an administrator's rights, for all of them. scripts/windows makes it from the
; folder that the zip holds: makensis -DVERSION=... -DFILES=LISTS -DICON=... -DOUTPUT=... installer.nsi
; LISTS is a folder with install.nsh and uninstall.nsh: one line for each file and folder, so that what a user has put
; beside the program stays.

Target amd64-unicode
Unicode true
SetCompressor /SOLID lzma
Name "Beastwright"
OutFile "${OUTPUT}"
BrandingText "Beastwright ${VERSION}"

!define MULTIUSER_EXECUTIONLEVEL Highest
!define MULTIUSER_MUI
!define MULTIUSER_INSTALLMODE_COMMANDLINE
!define MULTIUSER_USE_PROGRAMFILES64
!define MULTIUSER_INSTALLMODE_INSTDIR "Beastwright"
!define UNINSTALL "Software\Microsoft\Windows\CurrentVersion\Uninstall\Beastwright"
!define MULTIUSER_INSTALLMODE_DEFAULT_REGISTRY_KEY "${UNINSTALL}"
!define MULTIUSER_INSTALLMODE_DEFAULT_REGISTRY_VALUENAME "InstallMode"
!define MULTIUSER_INSTALLMODE_INSTDIR_REGISTRY_KEY "${UNINSTALL}"
!define MULTIUSER_INSTALLMODE_INSTDIR_REGISTRY_VALUENAME "InstallLocation"
!include MultiUser.nsh
!include MUI2.nsh
!include LogicLib.nsh

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_ABORTWARNING
!insertmacro MULTIUSER_PAGE_INSTALLMODE
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!define MUI_FINISHPAGE_RUN "$INSTDIR\beastwright.exe"
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"

VIProductVersion "${VERSION}.0"
VIAddVersionKey "ProductName" "Beastwright"
VIAddVersionKey "ProductVersion" "${VERSION}"
VIAddVersionKey "FileVersion" "${VERSION}"
VIAddVersionKey "FileDescription" "Installer of Beastwright"
VIAddVersionKey "LegalCopyright" "Copyright (c) 2026 The Beastwright developers"

Function .onInit
    SetRegView 64
    !insertmacro MULTIUSER_INIT
FunctionEnd

Function un.onInit
    SetRegView 64
    !insertmacro MULTIUSER_UNINIT
FunctionEnd

; A type of files: its name, what the desktop calls it. The program is offered for it and opens it where nothing else
; does; a user's own choice stays.
!macro RegisterType EXTENSION CLASS DESCRIPTION
    WriteRegStr SHCTX "Software\Classes\${CLASS}" "" "${DESCRIPTION}"
    WriteRegStr SHCTX "Software\Classes\${CLASS}\DefaultIcon" "" '"$INSTDIR\beastwright.exe",0'
    WriteRegStr SHCTX "Software\Classes\${EXTENSION}\OpenWithProgids" "${CLASS}" ""
    ReadRegStr $0 SHCTX "Software\Classes\${EXTENSION}" ""
    ${If} $0 == ""
        WriteRegStr SHCTX "Software\Classes\${EXTENSION}" "" "${CLASS}"
    ${EndIf}
!macroend

!macro ForgetType EXTENSION CLASS
    DeleteRegKey SHCTX "Software\Classes\${CLASS}"
    DeleteRegValue SHCTX "Software\Classes\${EXTENSION}\OpenWithProgids" "${CLASS}"
    DeleteRegKey /ifempty SHCTX "Software\Classes\${EXTENSION}\OpenWithProgids"
    ReadRegStr $0 SHCTX "Software\Classes\${EXTENSION}" ""
    ${If} $0 == "${CLASS}"
        DeleteRegValue SHCTX "Software\Classes\${EXTENSION}" ""
    ${EndIf}
    DeleteRegKey /ifempty SHCTX "Software\Classes\${EXTENSION}"
!macroend

!macro TellDesktop
    System::Call 'shell32::SHChangeNotify(i 0x08000000, i 0, p 0, p 0)'
!macroend

Section
    !include "${FILES}/install.nsh"
    SetOutPath "$INSTDIR"
    WriteUninstaller "$INSTDIR\uninstall.exe"
    CreateShortcut "$SMPROGRAMS\Beastwright.lnk" "$INSTDIR\beastwright.exe"

    !insertmacro RegisterType ".mvm" "Beastwright.Model" "Morvane creature model"
    WriteRegStr SHCTX "Software\Classes\Beastwright.Model\shell\open\command" "" '"$INSTDIR\beastwright.exe" "%1"'
    !insertmacro RegisterType ".wif" "Beastwright.Weights" "Beastwright weights file"
    WriteRegStr SHCTX "Software\Classes\Applications\beastwright.exe" "FriendlyAppName" "Beastwright"
    WriteRegStr SHCTX "Software\Classes\Applications\beastwright.exe\SupportedTypes" ".mvm" ""
    WriteRegStr SHCTX "Software\Classes\Applications\beastwright.exe\shell\open\command" "" \
        '"$INSTDIR\beastwright.exe" "%1"'
    !insertmacro TellDesktop

    WriteRegStr SHCTX "${UNINSTALL}" "DisplayName" "Beastwright"
    WriteRegStr SHCTX "${UNINSTALL}" "DisplayVersion" "${VERSION}"
    WriteRegStr SHCTX "${UNINSTALL}" "DisplayIcon" '"$INSTDIR\beastwright.exe",0'
    WriteRegStr SHCTX "${UNINSTALL}" "Publisher" "The Beastwright developers"
    WriteRegStr SHCTX "${UNINSTALL}" "InstallLocation" "$INSTDIR"
    WriteRegStr SHCTX "${UNINSTALL}" "InstallMode" "$MultiUser.InstallMode"
    WriteRegStr SHCTX "${UNINSTALL}" "UninstallString" '"$INSTDIR\uninstall.exe" /$MultiUser.InstallMode'
    WriteRegStr SHCTX "${UNINSTALL}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /$MultiUser.InstallMode /S'
    WriteRegDWORD SHCTX "${UNINSTALL}" "NoModify" 1
    WriteRegDWORD SHCTX "${UNINSTALL}" "NoRepair" 1
    WriteRegDWORD SHCTX "${UNINSTALL}" "EstimatedSize" ${KILOBYTES}
SectionEnd

Section "Uninstall"
    Delete "$SMPROGRAMS\Beastwright.lnk"
    !insertmacro ForgetType ".mvm" "Beastwright.Model"
    !insertmacro ForgetType ".wif" "Beastwright.Weights"
    DeleteRegKey SHCTX "Software\Classes\Applications\beastwright.exe"
    !insertmacro TellDesktop
    DeleteRegKey SHCTX "${UNINSTALL}"
    Delete "$INSTDIR\uninstall.exe"
    !include "${FILES}/uninstall.nsh"
    RMDir "$INSTDIR"
SectionEnd
