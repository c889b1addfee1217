// SPDX-License-Identifier: MIT
// Reads sheets through the COM server and reports each one; the exit status says how many were read.
// Usage: cscript //nologo ReadSheets.js MODEL-NUMBER PORT SHEETS [ROWS COLUMNS]

// What the component reports: without an object like this it shows message boxes.
var failures = {
    Silent: false,
    RaiseError: function (number, kind, description, source) {
        WScript.Echo("Failure " + number + " in " + source + ": " + description);
        return 0;
    }
};

var given = WScript.Arguments;
if (given.length < 3) {
    WScript.Echo("Usage: ReadSheets.js MODEL-NUMBER PORT SHEETS [ROWS COLUMNS]");
    WScript.Quit(255);
}

var reader = new ActiveXObject("KELReader81U.clsKELReader");
reader.SetError(failures);
if (!reader.LoadDefaults(Number(given(0))))
    WScript.Quit(254);
reader.Port = Number(given(1));
reader.RecognitionMode = 1;
if (given.length > 4) {
    // Element 1 is page 1; element 0 is none.
    reader.Side1Rows = [0, Number(given(3))];
    reader.Side1Cols = [0, Number(given(4))];
}
WScript.Echo(reader.ReaderName);

var sheets = 0;
if (reader.StartReader()) {
    while (sheets < Number(given(2)) && reader.ReadPage(false)) {
        sheets++;
        WScript.Echo("Sheet " + sheets + ": " + reader.Side1TimingMarks + " timing marks");
        reader.EjectPage();
    }
}
reader.EndReader();
reader.SetError(null);
WScript.Quit(sheets);
