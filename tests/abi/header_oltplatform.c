#include "oltplatform.h"
