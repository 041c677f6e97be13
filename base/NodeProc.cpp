#include "base/NodeProc.h"
