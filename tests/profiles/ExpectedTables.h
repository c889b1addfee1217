// SPDX-License-Identifier: MIT
#pragma once

// What the models can do, as tables on paper: kept apart from the table of models on purpose, and in another form. Who
// changes a model changes it in both places. ExpectedCatalogue reads them for the tests.

namespace kel::test {

// Position, model, number, maker, name.
inline constexpr const char* kRoster = R"(
 1 None                       0 -        (text 372)
 2 AppersonAdvantage1200     40 AP       Apperson Advantage 1200
 3 AppersonAdvantageLink      1 AP       Apperson Advantage Link
 4 AppersonBenchMark3000     39 AP       Apperson BenchMark 3000
 5 AppersonGradeMaster       18 AP       Apperson GradeMaster
 6 ChatsworthACF100          37 CT       Chatsworth Data ACP-100
 7 ChatsworthACF200          35 CT       Chatsworth Data ACF-200
 8 ChatsworthACP200          41 CT       Chatsworth Data ACP-200
 9 ChatsworthALSAccelScanOMR 22 CT       Chatsworth Data ALS AccelScan OMR
10 ChatsworthOMR1100         20 CT       Chatsworth Data OMR1100
11 ChatsworthOMR2000         21 CT       Chatsworth Data OMR2000
12 PDIVMR138                 24 PDI      Peripheral Dynamics Inc. VMR138
13 Scantron8000              16 Scantron Scantron 8000
14 Scantron8400              17 Scantron Scantron 8400
15 NCSEZData                 23 Scantron Scantron EZData
16 NCSOpScan2                 2 Scantron Scantron OpScan 2
17 NCSOpScaniNSIGHT2         32 Scantron Scantron iNSIGHT 2 (OMR)
18 NCSOpScan3                 3 Scantron Scantron OpScan 3
19 NCSOpScan4                 4 Scantron Scantron OpScan 4/4U
20 NCSOpScaniNSIGHT4         31 Scantron Scantron iNSIGHT 4 (OMR)
21 NCSOpScan5                 5 Scantron Scantron OpScan 5
22 NCSOpScan6                25 Scantron Scantron OpScan 6
23 NCSOpScan7                 6 Scantron Scantron OpScan 7
24 NCSOpScan8                26 Scantron Scantron OpScan 8
25 ScantronScanMark2000      11 Scantron Scantron Scanmark 2000
26 ScantronScanMark2250      12 Scantron Scantron Scanmark 2250
27 ScantronScanMark2500      13 Scantron Scantron Scanmark 2500
28 ScantronScanMark4000      14 Scantron Scantron Scanmark 4000
29 ScantronScanMark5500      15 Scantron Scantron Scanmark 5500
30 ScantronScanMarkES2010    27 Scantron Scantron Scanmark ES 2010
31 ScantronScanMarkES2260    28 Scantron Scantron Scanmark ES 2260
32 ScantronScanMarkES2800    29 Scantron Scantron Scanmark ES 2800
33 ScanningSystemsSR410      19 Sekonic  Sekonic SR-410
34 SekonicSR430              38 Sekonic  Sekonic SR-430
35 ScanningSystemsSR601       7 Sekonic  Sekonic SR-601
36 ScanningSystemsSR607       8 Sekonic  Sekonic SR-607
37 ScanningSystemsSR700351    9 Sekonic  Sekonic SR-700-351
38 ScanningSystemsSR700352   10 Sekonic  Sekonic SR-700-352
39 SekonicSR1800             36 Sekonic  Sekonic SR1800 (USB)
40 SekonicSR2300             30 Sekonic  Sekonic SR2300 (USB)
41 SekonicSR3500             33 Sekonic  Sekonic SR3500 (USB)
42 SekonicSR6500             34 Sekonic  Sekonic SR6500 (USB)
)";

// The values that a line starts from, and the models that share them. "empty" is the empty text.
inline constexpr const char* kSerialColumns = "BaudRate DataBits Parity StopBits FlowControl";
inline constexpr const char* kSerialDefaults = R"(
    9600        0  empty      0.0        None : None
   38400        8      N      1.0        None : AppersonAdvantage1200 AppersonBenchMark3000
   19200        8      N      1.0        None : AppersonAdvantageLink AppersonGradeMaster
    9600        7      E      1.0        None : ChatsworthACF100 ChatsworthACF200 ChatsworthACP200
    9600        7      E      1.0        None : ChatsworthALSAccelScanOMR ChatsworthOMR1100 ChatsworthOMR2000 NCSEZData
    9600        8      N      1.0        None : PDIVMR138
    9600        8      N      2.0        None : Scantron8000 Scantron8400 ScantronScanMarkES2800
   38400        7      O      2.0    Hardware : NCSOpScan2 NCSOpScaniNSIGHT2 NCSOpScan3 NCSOpScan4 NCSOpScaniNSIGHT4
   38400        7      O      2.0    Hardware : NCSOpScan5 NCSOpScan6 NCSOpScan7 NCSOpScan8
   19200        8      N      2.0        None : ScantronScanMark2000 ScantronScanMark2250 ScantronScanMark2500
   19200        8      N      2.0        None : ScantronScanMark4000 ScantronScanMark5500
   19200        8      N      2.0        None : ScantronScanMarkES2010 ScantronScanMarkES2260
    9600        7      N      2.0    Hardware : ScanningSystemsSR410 ScanningSystemsSR601 ScanningSystemsSR607
    9600        7      N      2.0    Hardware : ScanningSystemsSR700351 ScanningSystemsSR700352
   38400        7      N      2.0    Hardware : SekonicSR430
    9600        0  empty      0.0        None : SekonicSR1800 SekonicSR2300 SekonicSR3500 SekonicSR6500
)";

// The models that are no serial ones.
inline constexpr const char* kUsbModels = "SekonicSR1800 SekonicSR2300 SekonicSR3500 SekonicSR6500";

// Flags that are True but for some models.
inline constexpr const char* kTrueExceptFor = R"(
BaudRateEnabled             : ChatsworthACF100 NCSEZData SekonicSR1800 SekonicSR2300 SekonicSR3500 SekonicSR6500
DataBitsEnabled             : ChatsworthACF100 NCSEZData SekonicSR1800 SekonicSR2300 SekonicSR3500 SekonicSR6500
ParityEnabled               : ChatsworthACF100 NCSEZData SekonicSR1800 SekonicSR2300 SekonicSR3500 SekonicSR6500
StopBitsEnabled             : ChatsworthACF100 NCSEZData SekonicSR1800 SekonicSR2300 SekonicSR3500 SekonicSR6500
FlowControlEnabled          : ChatsworthACF100 NCSEZData SekonicSR1800 SekonicSR2300 SekonicSR3500 SekonicSR6500
BaudRateVisible             : ChatsworthACF100 NCSEZData
DataBitsVisible             : ChatsworthACF100 NCSEZData
ParityVisible               : ChatsworthACF100 NCSEZData
StopBitsVisible             : ChatsworthACF100 NCSEZData
FlowControlVisible          : ChatsworthACF100 NCSEZData
PortEnabled                 : SekonicSR1800 SekonicSR2300 SekonicSR3500 SekonicSR6500
PortVisible                 :
SleepTimeEnabled            : ChatsworthACF100 NCSEZData
SleepTimeVisible            : ChatsworthACF100 NCSEZData
TimeOutEnabled              : ChatsworthACF100 NCSEZData
TimeOutVisible              : ChatsworthACF100 NCSEZData
MarkDiscriminationVisible   : ChatsworthACF100 NCSEZData
RecognitionThresholdVisible :
)";

// Options: - off and + on are not the user's to change, o off and x on are; in parentheses what the dialog hides.
// The last two columns are LocateEnabled and FirmwareEnabled.
inline constexpr const char* kOptionColumns =
    "ReaderGrade Barcode Duplex Feeder Rejecter Printer Windowing LocateEnabled FirmwareEnabled";
inline constexpr const char* kOptions = R"(
None                      -   -   -   -   -   -   -    no  no
AppersonAdvantage1200     o   +   +   -   -   -   (-)  no  no
AppersonAdvantageLink     o   +   -   -   -   -   -    no  no
AppersonBenchMark3000     o   +   -   -   +   -   (-)  no  no
AppersonGradeMaster       -   -   -   -   -   -   -    no  no
ChatsworthACF100          (-) (-) (-) (-) (+) (-) (-)  yes yes
ChatsworthACF200          -   -   -   o   -   -   -    no  yes
ChatsworthACP200          -   -   -   -   -   -   -    no  yes
ChatsworthALSAccelScanOMR -   -   -   -   x   -   -    yes yes
ChatsworthOMR1100         -   -   -   -   -   -   -    yes yes
ChatsworthOMR2000         -   -   -   +   -   -   -    yes yes
PDIVMR138                 -   -   -   -   x   -   -    no  no
Scantron8000              -   -   x   x   -   -   -    no  no
Scantron8400              -   -   x   x   -   -   -    no  no
NCSEZData                 (-) (-) (-) (-) (+) (-) (-)  yes yes
NCSOpScan2                o   o   o   -   -   o   (-)  no  no
NCSOpScaniNSIGHT2         o   o   o   -   -   o   (-)  no  no
NCSOpScan3                o   o   o   +   o   o   (-)  no  no
NCSOpScan4                o   o   o   +   o   o   (-)  no  no
NCSOpScaniNSIGHT4         o   o   o   +   o   o   (-)  no  no
NCSOpScan5                -   o   o   +   -   o   (-)  no  no
NCSOpScan6                -   o   o   +   -   o   (-)  no  no
NCSOpScan7                -   o   o   +   +   o   (-)  no  no
NCSOpScan8                -   o   o   +   +   o   (-)  no  no
ScantronScanMark2000      -   -   -   -   -   o   x    no  no
ScantronScanMark2250      -   -   +   -   -   o   x    no  no
ScantronScanMark2500      -   -   x   +   o   o   x    no  no
ScantronScanMark4000      -   -   +   +   x   o   x    no  no
ScantronScanMark5500      -   -   +   +   x   o   x    no  no
ScantronScanMarkES2010    -   -   -   -   -   o   x    no  no
ScantronScanMarkES2260    -   -   +   x   -   o   x    no  no
ScantronScanMarkES2800    -   -   x   +   o   o   x    no  no
ScanningSystemsSR410      -   -   -   +   -   -   -    no  no
SekonicSR430              -   -   -   +   -   -   -    no  no
ScanningSystemsSR601      -   o   -   +   o   o   x    no  no
ScanningSystemsSR607      -   o   +   +   o   o   x    no  no
ScanningSystemsSR700351   -   o   -   +   o   o   x    no  no
ScanningSystemsSR700352   -   o   +   +   o   o   x    no  no
SekonicSR1800             -   o   o   +   -   o   -    no  no
SekonicSR2300             -   o   x   +   o   o   -    no  no
SekonicSR3500             -   o   x   +   o   o   -    no  no
SekonicSR6500             -   o   x   +   o   o   -    no  no
)";

// The values of the marks, and the models that share them.
inline constexpr const char* kThresholdColumns =
    "MarkCutOff MarkDiscrimination MarkDiscriminationEnabled RecognitionThreshold RecognitionThresholdEnabled "
    "RecognitionThresholdMinimum RecognitionThresholdMaximum MaxCols";
inline constexpr const char* kThresholds = R"(
  0   0  False    0  False    0    0   0 : None
  0   0  False    1  False    0    0  12 : AppersonAdvantage1200
 20  10  True    15  True     0   31  12 : AppersonAdvantageLink
  0   0  False    1  False    0    0  15 : AppersonBenchMark3000
  1   1  False    1  False    0    0  12 : AppersonGradeMaster ChatsworthACF200 ChatsworthACP200
  1   1  False    1  False    0    0  12 : ChatsworthALSAccelScanOMR ChatsworthOMR1100 ChatsworthOMR2000
  4   9  False    8  True     0    9  12 : ChatsworthACF100
250   5  True   240  True   192  254  14 : PDIVMR138
 65  10  True    35  True     0   99  48 : Scantron8000 Scantron8400
  4   9  False    4  True     0    9  12 : NCSEZData
 10   3  True     7  True     0   15  48 : NCSOpScan2 NCSOpScaniNSIGHT2 NCSOpScan3 NCSOpScan4 NCSOpScaniNSIGHT4
 10   3  True     7  True     0   15  48 : NCSOpScan5 NCSOpScan6 NCSOpScan7 NCSOpScan8
 10   3  True     7  True     0   15  48 : ScantronScanMark2000 ScantronScanMark2250 ScantronScanMark2500
 10   3  True     7  True     0   15  48 : ScantronScanMark4000 ScantronScanMark5500
 10   3  True     7  True     0   15  48 : ScantronScanMarkES2010 ScantronScanMarkES2260 ScantronScanMarkES2800
  6   3  True     1  True     1    8  12 : ScanningSystemsSR410
  6   3  True     1  True     1   16  12 : SekonicSR430
 10   2  True     5  True     0   15  48 : ScanningSystemsSR601 ScanningSystemsSR607 ScanningSystemsSR700351
 10   2  True     5  True     0   15  48 : ScanningSystemsSR700352
 10   2  True     5  True     0   15  48 : SekonicSR1800 SekonicSR2300 SekonicSR3500 SekonicSR6500
)";

// The imprinter of a model: optional, never there and off, or ignored, so that a host may say what it likes. Then what
// an enabled one prints: the lines, the first and the last position, the characters; and the models that share them.
inline constexpr const char* kPrinters = R"(
ignored   0   -1   -1   -1 : None AppersonAdvantage1200 AppersonBenchMark3000 PDIVMR138 ScanningSystemsSR410
ignored   0   -1   -1   -1 : SekonicSR430
never     0   -1   -1   -1 : AppersonAdvantageLink AppersonGradeMaster ChatsworthACF100 ChatsworthACF200
never     0   -1   -1   -1 : ChatsworthACP200 ChatsworthALSAccelScanOMR ChatsworthOMR1100 ChatsworthOMR2000
never     0   -1   -1   -1 : NCSEZData
optional  1    0  135  135 : Scantron8000 Scantron8400 ScantronScanMark2000 ScantronScanMark2250
optional  1    0  135  135 : ScantronScanMark2500 ScantronScanMark4000 ScantronScanMark5500
optional  1    0  135  135 : ScantronScanMarkES2010 ScantronScanMarkES2260 ScantronScanMarkES2800
optional  1    0   24   24 : NCSOpScan2 NCSOpScaniNSIGHT2 NCSOpScan3 NCSOpScan4 NCSOpScaniNSIGHT4
optional  1    0   40   40 : NCSOpScan5
optional  1    0   25   25 : NCSOpScan6
optional  1   10   25   25 : NCSOpScan7
optional  1   10   54   54 : NCSOpScan8
optional  3   10  245   41 : ScanningSystemsSR601 ScanningSystemsSR607 ScanningSystemsSR700351
optional  3   10  245   41 : ScanningSystemsSR700352 SekonicSR1800 SekonicSR2300 SekonicSR3500 SekonicSR6500
)";

// The models that let each sheet pass: nothing is decided on it.
inline constexpr const char* kDecideNothing = "ChatsworthACF200 ChatsworthACP200 ChatsworthOMR1100 ChatsworthOMR2000 "
                                              "Scantron8000 Scantron8400 ScantronScanMarkES2010 ScantronScanMarkES2260 "
                                              "ScanningSystemsSR410 SekonicSR430";

} // namespace kel::test
