#include "profiles/clsKELReaderProfile.h"

#include "dispatch/ReaderModels.h"

namespace kel {

std::string clsKELReaderProfile::ReaderName() const
{
    return ReturnReaderName(ReaderType());
}

} // namespace kel
