// The module consists of the functions of vek0_web.h, which the link options export.
#include "../engine/vek0_web.h"
