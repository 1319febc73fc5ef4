// Shared by every test program (helpers live in test_support.h).
#include "test_support.h"
