#include "environment/settings.h"
