#include "support/Waiting.h"
