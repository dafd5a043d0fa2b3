#pragma once
#include "spreadsheet/engine/header_footer.h"
