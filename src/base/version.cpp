#include "base/version.h"

int simulatorVersion;
