; SPDX-License-Identifier: MIT
; Puts a folder into the Path of the machine or of the user, and takes it out again. The Path is worked on in memory of
; the system's: it may be longer than a text of this language, which would lose the end of it.

!include LogicLib.nsh
!include WinMessages.nsh

!define PATH_BYTES 65536 ; a longer Path is left as it is
!define PATH_ROOM 69632  ; with one more folder
!define SEMICOLON 59

; Defines ${UN}ChangePath. $R0: the folder; $R1: 1 if it is to be in the Path, 0 if not. Changes $0 to $9.
!macro ChangePath UN
Function ${UN}ChangePath
    StrCpy $0 0x80000001
    StrCpy $1 "Environment"
    ${If} $MultiUser.InstallMode == "AllUsers"
        StrCpy $0 0x80000002
        StrCpy $1 "SYSTEM\CurrentControlSet\Control\Session Manager\Environment"
    ${EndIf}
    System::Call 'advapi32::RegCreateKeyExW(p r0, w r1, i 0, p 0, i 0, i 3, p 0, *p .r2, p 0) i .r3'
    ${If} $3 <> 0
        Return
    ${EndIf}
    System::Alloc ${PATH_ROOM}
    Pop $5

    ; ";" before each folder, and one at the end
    System::Call 'kernel32::lstrcpyW(p r5, w ";")'
    IntOp $6 $5 + 2
    System::Call 'advapi32::RegQueryValueExW(p r2, w "Path", p 0, *i .r7, p r6, *i ${PATH_BYTES}) i .r3'
    ${If} $3 = 2
        StrCpy $7 2 ; there is none yet: a text with variables, as the system makes it
        StrCpy $3 0
    ${EndIf}
    ${If} $3 = 0
        System::Call 'kernel32::lstrlenW(p r5) i .r8'
        IntOp $8 $8 * 2
        IntOp $8 $5 + $8
        IntOp $8 $8 - 2
        System::Call '*$8(&i2 .r8)'
        ${If} $8 <> ${SEMICOLON}
            System::Call 'kernel32::lstrcatW(p r5, w ";")'
        ${EndIf}

        StrCpy $4 0 ; whether anything changes
        System::Call 'shlwapi::StrStrIW(p r5, w ";$R0;") p .r9'
        ${If} $R1 = 1
        ${AndIf} $9 P= 0
            System::Call 'kernel32::lstrcatW(p r5, w "$R0")'
            StrCpy $4 1
        ${ElseIf} $R1 = 0
        ${AndIf} $9 P<> 0
            StrLen $8 ";$R0"
            IntOp $8 $8 * 2
            IntOp $8 $9 + $8
            System::Call 'kernel32::lstrlenW(p r8) i .r3'
            IntOp $3 $3 * 2
            System::Call 'ntdll::memmove(p r9, p r8, p r3) ? c'
            IntOp $3 $9 + $3
            System::Call '*$3(&i2 0)'
            IntOp $3 $3 - 2
            System::Call '*$3(&i2 0)' ; the ";" at the end
            StrCpy $4 1
        ${EndIf}

        ${If} $4 = 1
            System::Call 'kernel32::lstrlenW(p r6) i .r8'
            ${If} $8 = 0
                System::Call 'advapi32::RegDeleteValueW(p r2, w "Path")'
            ${Else}
                IntOp $8 $8 * 2
                IntOp $8 $8 + 2
                System::Call 'advapi32::RegSetValueExW(p r2, w "Path", i 0, i r7, p r6, i r8)'
            ${EndIf}
            SendMessage ${HWND_BROADCAST} ${WM_SETTINGCHANGE} 0 "STR:Environment" /TIMEOUT=5000
        ${EndIf}
    ${EndIf}
    System::Free $5
    System::Call 'advapi32::RegCloseKey(p r2)'
FunctionEnd
!macroend
