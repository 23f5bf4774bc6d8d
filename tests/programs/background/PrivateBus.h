// Where the private bus stood until every test found it in tests/bus.
#pragma once

#include "bus/PrivateBus.h"
