#include "data/scramble.h"
