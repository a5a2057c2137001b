#include "oltmock.h"
