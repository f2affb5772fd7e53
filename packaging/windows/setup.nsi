; The installer of KoLink for Windows. script/package gives VERSION, OUT, STAGE and LICENCE.
;   setup.exe /S [/TYPES] [/D=FOLDER]     silent; /TYPES: file types as well; /D comes last
Unicode true
!include "MUI2.nsh"
!include "FileFunc.nsh"
!include "x64.nsh"
!define PRODUCT "KoLink"
!define UNINSTALL "Software\Microsoft\Windows\CurrentVersion\Uninstall\KoLink"

Name "${PRODUCT} ${VERSION}"
OutFile "${OUT}"
InstallDir "$PROGRAMFILES64\KoLink"
InstallDirRegKey HKLM "Software\KoLink" "Folder"
RequestExecutionLevel admin
SetCompressor /SOLID lzma
ManifestDPIAware true

!insertmacro MUI_PAGE_LICENSE "${LICENCE}"
!insertmacro MUI_PAGE_COMPONENTS
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"
!insertmacro MUI_LANGUAGE "Japanese"
!insertmacro MUI_LANGUAGE "SimpChinese"

LangString StudioText ${LANG_ENGLISH} "KoLink Studio in the Start menu"
LangString StudioText ${LANG_JAPANESE} "スタートメニューに KoLink Studio"
LangString StudioText ${LANG_SIMPCHINESE} "“开始”菜单中的 KoLink Studio"
LangString TypesText ${LANG_ENGLISH} "Open .tnc, .bkc, .dcc and .clb with KoLink Studio"
LangString TypesText ${LANG_JAPANESE} ".tnc、.bkc、.dcc、.clb を KoLink Studio で開く"
LangString TypesText ${LANG_SIMPCHINESE} "用 KoLink Studio 打开 .tnc、.bkc、.dcc、.clb"

!macro Type EXTENSION DESCRIPTION
    ReadRegStr $1 HKLM "Software\Classes\.${EXTENSION}" ""
    ${If} $1 != "KoLink.${EXTENSION}"
        WriteRegStr HKLM "Software\Classes\KoLink.${EXTENSION}" "Before" "$1"
    ${EndIf}
    WriteRegStr HKLM "Software\Classes\.${EXTENSION}" "" "KoLink.${EXTENSION}"
    WriteRegStr HKLM "Software\Classes\KoLink.${EXTENSION}" "" "${DESCRIPTION}"
    WriteRegStr HKLM "Software\Classes\KoLink.${EXTENSION}\shell\open\command" "" '"$INSTDIR\x64\bin\KoLinkStudio.exe" "%1"'
!macroend
; A type that another program has taken since is that program's; one that was another's is given back.
!macro NoType EXTENSION
    ReadRegStr $1 HKLM "Software\Classes\.${EXTENSION}" ""
    ReadRegStr $2 HKLM "Software\Classes\KoLink.${EXTENSION}" "Before"
    ${If} $1 == "KoLink.${EXTENSION}"
        ${If} $2 == ""
            DeleteRegKey HKLM "Software\Classes\.${EXTENSION}"
        ${Else}
            WriteRegStr HKLM "Software\Classes\.${EXTENSION}" "" "$2"
        ${EndIf}
    ${EndIf}
    DeleteRegKey HKLM "Software\Classes\KoLink.${EXTENSION}"
!macroend

Section "KoLink" Main
    SectionIn RO
    SetRegView 64
    !include "${STAGE}/put.nsh"
    SetOutPath "$INSTDIR"
    WriteUninstaller "$INSTDIR\uninstall.exe"
    WriteRegStr HKLM "Software\KoLink" "Folder" "$INSTDIR"
    WriteRegStr HKLM "${UNINSTALL}" "DisplayName" "${PRODUCT} ${VERSION}"
    WriteRegStr HKLM "${UNINSTALL}" "DisplayVersion" "${VERSION}"
    WriteRegStr HKLM "${UNINSTALL}" "Publisher" "The KoLink authors"
    WriteRegStr HKLM "${UNINSTALL}" "InstallLocation" "$INSTDIR"
    WriteRegStr HKLM "${UNINSTALL}" "UninstallString" '"$INSTDIR\uninstall.exe"'
    WriteRegStr HKLM "${UNINSTALL}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
    WriteRegDWORD HKLM "${UNINSTALL}" "NoModify" 1
    WriteRegDWORD HKLM "${UNINSTALL}" "NoRepair" 1
SectionEnd

Section "$(StudioText)" Studio
    SetShellVarContext all
    SetOutPath "$INSTDIR\x64\bin"
    CreateShortcut "$SMPROGRAMS\KoLink Studio.lnk" "$INSTDIR\x64\bin\KoLinkStudio.exe"
SectionEnd

Section /o "$(TypesText)" Types
    SetRegView 64
    !insertmacro Type "tnc" "CMYK tone curves"
    !insertmacro Type "bkc" "Black correction"
    !insertmacro Type "dcc" "DCC settings"
    !insertmacro Type "clb" "Calibration set"
    System::Call 'shell32::SHChangeNotify(i 0x08000000, i 0, p 0, p 0)'
SectionEnd

Function .onInit
    ${IfNot} ${RunningX64}
        MessageBox MB_ICONSTOP "KoLink's tool and KoLink Studio need Windows in 64 bits." /SD IDOK
        SetErrorLevel 2
        Quit
    ${EndIf}
    ${GetParameters} $0
    ClearErrors
    ${GetOptions} $0 "/TYPES" $1
    ${IfNot} ${Errors}
        SectionSetFlags ${Types} 1
    ${EndIf}
FunctionEnd

Section "Uninstall"
    SetRegView 64
    SetShellVarContext all
    !include "${STAGE}/take.nsh"
    Delete "$INSTDIR\uninstall.exe"
    RMDir "$INSTDIR"
    Delete "$SMPROGRAMS\KoLink Studio.lnk"
    !insertmacro NoType "tnc"
    !insertmacro NoType "bkc"
    !insertmacro NoType "dcc"
    !insertmacro NoType "clb"
    System::Call 'shell32::SHChangeNotify(i 0x08000000, i 0, p 0, p 0)'
    DeleteRegKey HKLM "${UNINSTALL}"
    DeleteRegKey HKLM "Software\KoLink"
SectionEnd
