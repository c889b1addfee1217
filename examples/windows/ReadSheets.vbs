' SPDX-License-Identifier: MIT
' Reads sheets through the COM server and reports each one; the exit status says how many were read.
' Usage: cscript //nologo ReadSheets.vbs MODEL-NUMBER PORT SHEETS [ROWS COLUMNS]

Option Explicit

' What the component reports: without an object like this it shows message boxes.
Class Reports
    Public Silent
    Public Count
    Public Function RaiseError(Number, Kind, Description, Source, Title, Button1, Button2, Button3, Default, _
                               Text1, Text2, Text3, ShowHelp)
        Count = Count + 1
        WScript.Echo "Failure " & Number & " in " & Source & ": " & Description
        RaiseError = 0
    End Function
End Class

Dim reader, failures, sheets
If WScript.Arguments.Count < 3 Then
    WScript.Echo "Usage: ReadSheets.vbs MODEL-NUMBER PORT SHEETS [ROWS COLUMNS]"
    WScript.Quit 255
End If

Set failures = New Reports
failures.Silent = False
Set reader = CreateObject("KELReader81U.clsKELReader")
reader.SetError failures
If Not reader.LoadDefaults(CLng(WScript.Arguments(0))) Then WScript.Quit 254
reader.Port = CInt(WScript.Arguments(1))
reader.RecognitionMode = 1
If WScript.Arguments.Count > 4 Then
    ' Element 1 is page 1; element 0 is none.
    reader.Side1Rows = Array(0, CInt(WScript.Arguments(3)))
    reader.Side1Cols = Array(0, CInt(WScript.Arguments(4)))
End If
WScript.Echo reader.ReaderName

sheets = 0
If reader.StartReader() Then
    Do While sheets < CLng(WScript.Arguments(2))
        If Not reader.ReadPage(False) Then Exit Do
        sheets = sheets + 1
        WScript.Echo "Sheet " & sheets & ": " & reader.Side1TimingMarks & " timing marks"
        reader.EjectPage
    Loop
End If
reader.EndReader
reader.SetError Nothing
WScript.Quit sheets
