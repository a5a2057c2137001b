#include "oltmgmt.h"
