// The demo: what the library does, as far as it stands.
#include "base/Log.h"

#include <cstdio>

using namespace Orvane;

int main()
{
    Log::the().setLevel(LOG_INFO);
    ORV_INFO("Orvane demo starting\n");
    std::printf("Orvane demo\n");
    return 0;
}
