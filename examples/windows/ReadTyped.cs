// SPDX-License-Identifier: MIT
// Reads a batch of sheets as ReadSheets.cs does, by an interop assembly: calls, events and numbers have their types.
// Usage: ReadTyped MODEL-NUMBER PORT SHEETS [ROWS COLUMNS]
//
// ReadTyped.csproj makes the assembly when it builds the program: in a command prompt of Visual Studio,
// msbuild -restore ReadTyped.csproj -p:Platform=x86 (x64 for the 64-bit component). The component is registered.

using System;
using System.Runtime.InteropServices;
using KELReader81U;

/// What the component reports: without an object like this it shows message boxes.
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

public static class Program
{
    static int sheets;

    /// Rows and columns count from 1, which a C# array cannot do: hence GetValue. An array that was not read is null.
    static void PrintSheet(ref Array side1, ref Array side2, ref Array barcodes, ref bool reject)
    {
        Console.Write("Sheet {0}", ++sheets);
        foreach (string barcode in barcodes ?? new string[0])
            Console.Write(" {0}", barcode);
        Console.WriteLine();
        for (int row = 1; row <= side1.GetUpperBound(0); ++row) {
            for (int column = 1; column <= side1.GetUpperBound(1); ++column) {
                short mark = (short)side1.GetValue(row, column);
                if (mark != 0)
                    Console.WriteLine("  row {0}, column {1}: {2}", row, column, mark);
            }
        }
    }

    /// The size of a form whose first page has so many rows or columns; element 1 is page 1.
    static Array FirstPage(string size)
    {
        return new short[] { 0, short.Parse(size) };
    }

    [STAThread]
    public static int Main(string[] given)
    {
        if (given.Length < 3) {
            Console.Error.WriteLine("Usage: ReadTyped MODEL-NUMBER PORT SHEETS [ROWS COLUMNS]");
            return -1;
        }
        var reader = new clsKELReader();
        object failures = new Failures();
        reader.SetError(ref failures);
        if (!reader.LoadDefaults((kelReaderType)int.Parse(given[0])))
            return -1;
        reader.Port = short.Parse(given[1]);
        reader.RecognitionMode = kelRecognitionType.kelRecognitionTypePage;
        if (given.Length > 4) {
            // A property that takes its value by reference is set by its accessor.
            Array rows = FirstPage(given[3]), columns = FirstPage(given[4]);
            reader.set_Side1Rows(ref rows);
            reader.set_Side1Cols(ref columns);
        }

        reader.ReadSheet += PrintSheet;
        int count = 0;
        reader.ReadBatch(false, int.Parse(given[2]), ref count);
        Marshal.FinalReleaseComObject(reader);
        return count;
    }
}
