# SPDX-License-Identifier: MIT
# Reads sheets through the COM server and prints the marks of each; the exit status says how many were read.
# Usage: powershell -File ReadSheets.ps1 MODEL-NUMBER PORT SHEETS [ROWS COLUMNS]
#
# The PowerShell of System32 is as wide as Windows is; the one of SysWOW64 is 32 bits wide.

param([Parameter(Mandatory)] [int] $Model, [Parameter(Mandatory)] [int16] $Port, [Parameter(Mandatory)] [int] $Sheets,
      [int16] $Rows, [int16] $Columns)

# What the component reports: without an object like this it shows message boxes.
Add-Type -TypeDefinition @'
using System;
using System.Runtime.InteropServices;
[ComVisible(true), ClassInterface(ClassInterfaceType.AutoDispatch)]
public class Failures
{
    public bool Silent { get; set; }
    public short RaiseError(object number, int kind, string description, string source, string title, string button1,
                            string button2, string button3, int defaultButton, string text1, string text2, string text3,
                            bool showHelp)
    {
        Console.WriteLine("Failure {0} in {1}: {2}", number, source, description);
        return 0;
    }
}
'@

$reader = New-Object -ComObject KELReader81U.clsKELReader
[void] $reader.SetError((New-Object Failures))
if (-not $reader.LoadDefaults($Model)) { exit 254 }
$reader.Port = $Port
$reader.RecognitionMode = 1
if ($Rows -and $Columns) {
    # Element 1 is page 1; element 0 is none.
    $reader.Side1Rows = [int16[]] (0, $Rows)
    $reader.Side1Cols = [int16[]] (0, $Columns)
}
$reader.ReaderName

# Sheet by sheet: the events of COM objects do not reach a script, and need not.
$read = 0
if ($reader.StartReader()) {
    while ($read -lt $Sheets -and $reader.ReadPage($false)) {
        $read++
        "Sheet ${read}"
        $marks = $reader.Side1Array
        for ($row = 1; $row -le $marks.GetUpperBound(0); $row++) {
            for ($column = 1; $column -le $marks.GetUpperBound(1); $column++) {
                $mark = $marks.GetValue($row, $column)
                if ($mark -ne 0) { "  row $row, column ${column}: $mark" }
            }
        }
        $reader.EjectPage()
    }
}
[void] $reader.EndReader()
[void] $reader.SetError($null)
exit $read
