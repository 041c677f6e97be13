#include "base/ConvertParam.h"

namespace Orvane {

const ConvertParam& ConvertParam::defaults()
{
    static const ConvertParam plain;
    return plain;
}

} // namespace Orvane
