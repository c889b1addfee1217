// SPDX-License-Identifier: MIT
// Reads a batch of sheets through the COM server and prints the marks of each; the exit status says how many were read.
// Usage: ReadSheets MODEL-NUMBER PORT SHEETS [ROWS COLUMNS]
//
// It needs no interop assembly: csc /platform:x86 ReadSheets.cs (x64 for the 64-bit component). The component is
// registered (regsvr32 KELReader81U.dll).

using System;
using System.Runtime.InteropServices;
using System.Runtime.InteropServices.ComTypes;

/// The events that this host handles. A reader has more; only those that are declared arrive.
[ComImport, Guid("B7AF0FA2-83D5-4BB3-809A-847BC8F17A82"), InterfaceType(ComInterfaceType.InterfaceIsIDispatch)]
public interface IReaderEvents
{
    [DispId(2)]
    void ReadSheet([MarshalAs(UnmanagedType.SafeArray, SafeArraySubType = VarEnum.VT_I2)] ref Array side1,
                   [MarshalAs(UnmanagedType.SafeArray, SafeArraySubType = VarEnum.VT_I2)] ref Array side2,
                   [MarshalAs(UnmanagedType.SafeArray, SafeArraySubType = VarEnum.VT_BSTR)] ref Array barcodes,
                   ref bool reject);
}

[ComVisible(true), ClassInterface(ClassInterfaceType.None)]
public class Sheets : IReaderEvents
{
    int sheets;

    /// Rows and columns count from 1, which a C# array cannot do: hence GetValue. An array that was not read is null.
    public void ReadSheet(ref Array side1, ref Array side2, ref Array barcodes, ref bool reject)
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
}

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
    [STAThread]
    public static int Main(string[] given)
    {
        if (given.Length < 3) {
            Console.Error.WriteLine("Usage: ReadSheets MODEL-NUMBER PORT SHEETS [ROWS COLUMNS]");
            return -1;
        }
        dynamic reader = Activator.CreateInstance(Type.GetTypeFromProgID("KELReader81U.clsKELReader", true));
        reader.SetError(new Failures());
        if (!reader.LoadDefaults(int.Parse(given[0])))
            return -1;
        reader.Port = short.Parse(given[1]);
        reader.RecognitionMode = 1;
        if (given.Length > 4) {
            // Element 1 is page 1; element 0 is none.
            reader.Side1Rows = new short[] { 0, short.Parse(given[3]) };
            reader.Side1Cols = new short[] { 0, short.Parse(given[4]) };
        }

        Guid events = typeof(IReaderEvents).GUID;
        IConnectionPoint point;
        int connection;
        ((IConnectionPointContainer)reader).FindConnectionPoint(ref events, out point);
        point.Advise(new Sheets(), out connection);
        int count = 0;
        reader.ReadBatch(false, int.Parse(given[2]), ref count);
        point.Unadvise(connection);
        reader.SetError(null);
        Marshal.FinalReleaseComObject(reader);
        return count;
    }
}
