#include "page.h"
