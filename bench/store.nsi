; The same files as a store-only installer made by NSIS: unpacks them into a folder in TEMP, runs the same child, waits
; and deletes the folder. script/bench compares the installer with it.
;
;   makensis -DPAYLOAD=FOLDER -DOUTPUT=FILE [-DNO_CHECK] store.nsi
;
; NSIS reads the whole installer once more at start to check it; NO_CHECK leaves that out.
Unicode false
SetCompress off
SilentInstall silent
RequestExecutionLevel admin
Name "store"
OutFile "${OUTPUT}"
!ifdef NO_CHECK
  CRCCheck off
!endif

Section
  RMDir /r "$TEMP\kwa"
  SetOutPath "$TEMP\kwa"
  File "${PAYLOAD}/a/*"
  File "${PAYLOAD}/b/*"
  ExecWait "$TEMP\kwa\dpinst64.exe"
  SetOutPath "$TEMP"
  RMDir /r "$TEMP\kwa"
SectionEnd
