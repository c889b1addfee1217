// SPDX-License-Identifier: MIT
#include "profiles/ReaderModels.h"

#include "failure/guarded.h"
#include "strings/VBLMRTSModule.h"
#include "types/ModelTable.h"

namespace kel {

std::string ReturnReaderName(kelReaderType eReaderType)
{
    std::string sName;
    guarded("KELReader81 - basRead.ReturnReaderName", KEL_PARAMETERS(eReaderType), [&] {
        if (eReaderType == kelReaderTypeNone)
            sName = VBLM_RTString(text::kNoReader);
        else if (const ModelRow* row = modelRow(eReaderType))
            sName = row->name;
    });
    return sName;
}

} // namespace kel
