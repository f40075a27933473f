; The installer: for one user, without an administrator's rights, into a folder that the user may write,
; because data files and logs lie beside the program.
; For 64 bits like the program, so that Windows without the other kind takes it.
Target amd64-unicode
Unicode true
!include "MUI2.nsh"
!include "FileFunc.nsh"

!define CLASS "TARNPrep.DataFile"
!define UNINSTALL "Software\Microsoft\Windows\CurrentVersion\Uninstall\TARN Prep"

Name "TARN Prep"
OutFile "${OUT}"
RequestExecutionLevel user
InstallDir "$LOCALAPPDATA\Programs\TARN Prep"
InstallDirRegKey HKCU "${UNINSTALL}" "InstallLocation"
SetCompressor /SOLID lzma
VIProductVersion "${VERSION}.0"
VIAddVersionKey "ProductName" "TARN Prep"
VIAddVersionKey "FileDescription" "Installs TARN Prep"
VIAddVersionKey "FileVersion" "${VERSION}"
VIAddVersionKey "LegalCopyright" "See the folder licenses"

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!insertmacro MUI_PAGE_WELCOME
!define MUI_PAGE_CUSTOMFUNCTION_LEAVE RequireWritable
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!define MUI_FINISHPAGE_RUN "$INSTDIR\tarnprep.exe"
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"

; Leaves in $0 whether the folder can be written: data files lie beside the program.
Function TryToWrite
    StrCpy $0 "no"
    CreateDirectory "$INSTDIR"
    ClearErrors
    FileOpen $1 "$INSTDIR\writable.tmp" w
    IfErrors 0 writable
    RMDir "$INSTDIR"
    Return
writable:
    FileClose $1
    Delete "$INSTDIR\writable.tmp"
    StrCpy $0 "yes"
FunctionEnd

Function RequireWritable
    Call TryToWrite
    StrCmp $0 "yes" writable
    MessageBox MB_OK|MB_ICONEXCLAMATION "You may not write into this folder, and TARN Prep keeps your data files beside \
itself.$\r$\n$\r$\nThe folder that is offered now is yours."
    StrCpy $INSTDIR "$LOCALAPPDATA\Programs\TARN Prep"
    ; The page shows what was typed, and would take that again.
    FindWindow $1 "#32770" "" $HWNDPARENT
    GetDlgItem $2 $1 1019
    SendMessage $2 ${WM_SETTEXT} 0 "STR:$INSTDIR"
    Abort
writable:
FunctionEnd

; Programs that run cannot be replaced or removed; that shows before anything is changed.
!macro REQUIRE_CLOSED program name
    try_${program}:
    IfFileExists "$INSTDIR\${program}.exe" 0 closed_${program}
    ClearErrors
    FileOpen $1 "$INSTDIR\${program}.exe" a
    IfErrors 0 close_${program}
    MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION "${name} is running. Close it, then try again." /SD IDCANCEL \
        IDRETRY try_${program}
    SetErrorLevel 1
    Abort "${name} is running."
    close_${program}:
    FileClose $1
    closed_${program}:
!macroend

Section
    !insertmacro REQUIRE_CLOSED tarnprep "TARN Prep"
    !insertmacro REQUIRE_CLOSED tarnreview "TARN Review"
    ; Without pages, nobody has looked at the folder yet.
    Call TryToWrite
    StrCmp $0 "yes" writable
    SetErrorLevel 1
    Abort "You may not write into the folder $INSTDIR."
writable:
    SetOutPath "$INSTDIR"
    File /r /x Costs "${STAGE}\*"
    ; Samples that were tried out and changed are the user's.
    SetOverwrite off
    SetOutPath "$INSTDIR\Costs"
    File "${STAGE}\Costs\*"
    SetOverwrite on
    SetOutPath "$INSTDIR"
    WriteUninstaller "$INSTDIR\uninstall.exe"

    CreateDirectory "$SMPROGRAMS\TARN Prep"
    CreateShortcut "$SMPROGRAMS\TARN Prep\TARN Prep.lnk" "$INSTDIR\tarnprep.exe"
    CreateShortcut "$SMPROGRAMS\TARN Prep\TARN Review.lnk" "$INSTDIR\tarnreview.exe"
    CreateShortcut "$SMPROGRAMS\TARN Prep\Uninstall TARN Prep.lnk" "$INSTDIR\uninstall.exe"

    WriteRegStr HKCU "Software\Classes\${CLASS}" "" "TARN Prep data file"
    WriteRegStr HKCU "Software\Classes\${CLASS}\DefaultIcon" "" "$INSTDIR\tarnprep.exe,0"
    WriteRegStr HKCU "Software\Classes\${CLASS}\shell\open\command" "" '"$INSTDIR\tarnprep.exe" "%1"'
    WriteRegStr HKCU "Software\Classes\${CLASS}\shell\review" "" "Open with TARN &Review"
    WriteRegStr HKCU "Software\Classes\${CLASS}\shell\review\command" "" '"$INSTDIR\tarnreview.exe" "%1"'
    WriteRegStr HKCU "Software\Classes\.fcd\OpenWithProgids" "${CLASS}" ""
    ReadRegStr $0 HKCU "Software\Classes\.fcd" ""
    StrCmp $0 "" 0 taken
    WriteRegStr HKCU "Software\Classes\.fcd" "" "${CLASS}"
taken:
    System::Call 'shell32::SHChangeNotify(i 0x08000000, i 0, p 0, p 0)'

    WriteRegStr HKCU "${UNINSTALL}" "DisplayName" "TARN Prep"
    WriteRegStr HKCU "${UNINSTALL}" "DisplayVersion" "${VERSION}"
    WriteRegStr HKCU "${UNINSTALL}" "DisplayIcon" "$INSTDIR\tarnprep.exe"
    WriteRegStr HKCU "${UNINSTALL}" "InstallLocation" "$INSTDIR"
    WriteRegStr HKCU "${UNINSTALL}" "UninstallString" '"$INSTDIR\uninstall.exe"'
    WriteRegStr HKCU "${UNINSTALL}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
    WriteRegDWORD HKCU "${UNINSTALL}" "NoModify" 1
    WriteRegDWORD HKCU "${UNINSTALL}" "NoRepair" 1
    ${GetSize} "$INSTDIR" "/S=0K" $0 $1 $2
    WriteRegDWORD HKCU "${UNINSTALL}" "EstimatedSize" $0
SectionEnd

Section "Uninstall"
    !insertmacro REQUIRE_CLOSED tarnprep "TARN Prep"
    !insertmacro REQUIRE_CLOSED tarnreview "TARN Review"
    ; The folder Costs and what the user put anywhere else stay.
    !include "${LIST}"
    Delete "$INSTDIR\TARN.LOG"
    Delete "$INSTDIR\ERROR.LOG"
    Delete "$INSTDIR\uninstall.exe"
    RMDir "$INSTDIR"

    Delete "$SMPROGRAMS\TARN Prep\TARN Prep.lnk"
    Delete "$SMPROGRAMS\TARN Prep\TARN Review.lnk"
    Delete "$SMPROGRAMS\TARN Prep\Uninstall TARN Prep.lnk"
    RMDir "$SMPROGRAMS\TARN Prep"

    ReadRegStr $0 HKCU "Software\Classes\.fcd" ""
    StrCmp $0 "${CLASS}" 0 other
    DeleteRegValue HKCU "Software\Classes\.fcd" ""
other:
    DeleteRegValue HKCU "Software\Classes\.fcd\OpenWithProgids" "${CLASS}"
    DeleteRegKey /ifempty HKCU "Software\Classes\.fcd\OpenWithProgids"
    DeleteRegKey /ifempty HKCU "Software\Classes\.fcd"
    DeleteRegKey HKCU "Software\Classes\${CLASS}"
    DeleteRegKey HKCU "${UNINSTALL}"
    System::Call 'shell32::SHChangeNotify(i 0x08000000, i 0, p 0, p 0)'
SectionEnd
