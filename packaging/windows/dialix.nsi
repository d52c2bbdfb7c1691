; The Windows installer: the staged zip tree (scripts/windows/package.sh) put
; into a Quorvane2 installation.
;
;   makensis -DVERSION=0.0.1 -DSTAGE=<staged tree> -DOUTFILE=<setup.exe> dialix.nsi
;
; The operator picks the Quorvane2 program folder. The plug-in goes to its
; "quorvane2" plug-in folder; the compiler's runtime DLLs go beside the host's
; program only where the host has none (a host built with the same compiler
; ships them already, and its own copies are kept); the probe, the guide and
; the translations go to a "Dialix" folder of their own, with the uninstaller.

Unicode true
SetCompressor /SOLID lzma
RequestExecutionLevel admin

!include "MUI2.nsh"
!include "x64.nsh"

Name "Dialix panel plug-in ${VERSION}"
OutFile "${OUTFILE}"
InstallDir "$PROGRAMFILES64\Quorvane2"
InstallDirRegKey HKLM "Software\Dialix" "HostFolder"

!define MUI_DIRECTORYPAGE_TEXT_TOP "Choose the Quorvane2 program folder (the folder with the Quorvane2 program). The plug-in goes to its quorvane2 sub-folder."
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"
!insertmacro MUI_LANGUAGE "German"

Function .onInit
    ${IfNot} ${RunningX64}
        MessageBox MB_ICONSTOP "The Dialix plug-in needs 64-bit Windows."
        Abort
    ${EndIf}
    SetRegView 64
FunctionEnd

Section "Dialix"
    SetOutPath "$INSTDIR\quorvane2"
    File "${STAGE}\plugin\*dialix*.dll"

    SetOutPath "$INSTDIR"
    SetOverwrite off
    File "${STAGE}\plugin\libgcc_s_seh-1.dll"
    File "${STAGE}\plugin\libstdc++-6.dll"
    File "${STAGE}\plugin\libwinpthread-1.dll"
    SetOverwrite on

    SetOutPath "$INSTDIR\Dialix"
    File /r "${STAGE}\probe"
    File /r "${STAGE}\translations"
    File /r "${STAGE}\doc"
    WriteUninstaller "$INSTDIR\Dialix\uninstall.exe"

    WriteRegStr HKLM "Software\Dialix" "HostFolder" "$INSTDIR"
    WriteRegStr HKLM "Software\Microsoft\Windows\CurrentVersion\Uninstall\Dialix" \
        "DisplayName" "Dialix panel plug-in"
    WriteRegStr HKLM "Software\Microsoft\Windows\CurrentVersion\Uninstall\Dialix" \
        "DisplayVersion" "${VERSION}"
    WriteRegStr HKLM "Software\Microsoft\Windows\CurrentVersion\Uninstall\Dialix" \
        "UninstallString" '"$INSTDIR\Dialix\uninstall.exe"'
SectionEnd

; The runtime DLLs beside the host's program stay: the host may need them.
Section "Uninstall"
    SetRegView 64
    ReadRegStr $0 HKLM "Software\Dialix" "HostFolder"
    StrCmp $0 "" done
    Delete "$0\quorvane2\*dialix*.dll"
    RMDir "$0\quorvane2"
    RMDir /r "$0\Dialix"
done:
    DeleteRegKey HKLM "Software\Microsoft\Windows\CurrentVersion\Uninstall\Dialix"
    DeleteRegKey HKLM "Software\Dialix"
SectionEnd
