// SPDX-License-Identifier: MIT
#include "contract/AnswerKey.h"
#include "contract/Dictionary.h"
#include "drivers/apperson/DataLines.h"
#include "drivers/apperson/KeyEncoding.h"
#include "drivers/apperson/RawBlock.h"
#include "fuzz/Session.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

// What an Apperson reader may send: lines and blocks of any bytes, and replies within a session; and what a host may
// want to be sent: answer keys. The first byte chooses. Only run-time failures may come out, and they are recognised by
// their number.

namespace {

using namespace kel;

constexpr kelReaderType kAppersonModels[] = {kelReaderTypeAppersonAdvantageLink, kelReaderTypeAppersonGradeMaster,
                                             kelReaderTypeAppersonBenchMark3000, kelReaderTypeAppersonAdvantage1200};

/// A failure that a line, a block or a key may end in.
void expectKnown(const RuntimeFailure& failure)
{
    demand(failure.number() == 5 || failure.number() == 6 || failure.number() == 9, "the failure is meant");
}

void readBenchMark(std::span<const Byte> bytes)
{
    Dictionary oDataDict;
    oDataDict.CompareMode(kTextCompare);
    BenchMarkLineAP line(oDataDict);
    for (const Byte byte : bytes) {
        if (line.take(byte) != LineEndAP::None)
            return;
    }
}

void readAdvantage1200(std::span<const Byte> bytes, Boolean bReaderGrade)
{
    Dictionary oDataDict;
    oDataDict.CompareMode(kTextCompare);
    Advantage1200LineAP line(oDataDict);
    for (const Byte byte : bytes) {
        if (line.take(byte, bReaderGrade))
            line.next();
    }
}

/// Takes bytes up to the status; false if it does not come.
bool fill(RawBlockAP& block, std::span<const Byte> bytes)
{
    for (const Byte byte : bytes) {
        block.take(byte);
        if (block.isComplete())
            return true;
    }
    return false;
}

void readAdvantageLink(std::span<const Byte> bytes, Int32 rows, Int32 columns)
{
    RawBlockAP block = newBlockAdvantageLinkAP();
    if (!fill(block, bytes))
        return;
    MarkArray iSide1Arr(rows, columns);
    setMarksAdvantageLinkAP(iSide1Arr, block);
    for (const Int16 mark : iSide1Arr.elements())
        demand(mark >= 0 && mark <= 255, "a mark is a byte");
}

void readGradeMaster(std::span<const Byte> bytes, Int32 rows, Int32 columns)
{
    RawBlockAP block = newBlockGradeMasterAP();
    if (!fill(block, bytes))
        return;
    demand(identifierGradeMasterAP(block).size() == 10, "an identifier has ten characters");
    static_cast<void>(errorNumberGradeMasterAP(block));
    MarkArray iSide1Arr(rows, columns);
    Byte bValue = 0;
    setMarksGradeMasterAP(iSide1Arr, block, 7, bValue);
    for (const Int16 mark : iSide1Arr.elements())
        demand(mark == 0 || mark == 7, "a mark is the threshold");
}

/// A question a byte: its low bits say how many choices, versions and columns there are, the others what is right.
Reference<AnswerKey> keyOf(std::span<const Byte> bytes)
{
    auto key = makeReference<AnswerKey>();
    const std::vector<std::string> letters = {"A", "B", "C", "D", "E", "F", "G", "H"};
    for (const Byte byte : bytes) {
        const std::vector<std::string> choices(letters.begin(), letters.begin() + (byte & 7) + 1);
        const std::string right = letters[byte >> 5] + (byte & 8 ? ",A" : "");
        key->AddQuestion("Question", choices, std::vector<std::string>(byte % 6, right), byte & 16 ? 4 : 5);
    }
    return key;
}

void encodeKey(std::span<const Byte> bytes, Int16 iNumberQuestions, AnswerCodeAP code)
{
    EncodedKeyAP key;
    encodeKeyAP(
        *keyOf(bytes), [&] { return code; }, key);
    demand(key.iNumKeys <= (code == AnswerCodeAP::Mask ? 1 : 4), "a reader stores so many versions");
    if (needsSimplexKeyAP(key, iNumberQuestions))
        cutToFirstPageAP(key, iNumberQuestions);
    for (const std::string& sKey : key.sKeyStrArr.elements()) {
        std::string joined;
        for (const std::string& sPiece : keyPiecesAP(sKey)) {
            demand(!sPiece.empty() && sPiece.size() <= 5, "a piece has one to five characters");
            joined += sPiece;
        }
        demand(joined == sKey, "the pieces are the key");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 3)
        return 0;
    const std::span<const Byte> bytes(data + 3, size - 3);
    try {
        switch (data[0] % 8) {
        case 0: readBenchMark(bytes); break;
        case 1: readAdvantage1200(bytes, False); break;
        case 2: readAdvantage1200(bytes, True); break;
        case 3: readAdvantageLink(bytes, data[1], data[2]); break;
        case 4: readGradeMaster(bytes, data[1], data[2]); break;
        case 5: encodeKey(bytes, data[1], AnswerCodeAP::Digits); break;
        case 6: encodeKey(bytes, data[1], AnswerCodeAP::Mask); break;
        default: fuzzSerialSession(kAppersonModels, Input(data + 1, size - 1)); break;
        }
    } catch (const RuntimeFailure& failure) {
        expectKnown(failure);
    }
    return 0;
}
