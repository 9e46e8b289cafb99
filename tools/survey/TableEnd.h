// Where the table of positions ends that a walk has reached.
#pragma once

#include "files/DataFile.h"
#include "survey/Account.h"
#include "survey/Survey.h"

namespace corvantis::tool {

// Completes the survey with the table's entries and what lies behind them.
void FindTableEnd(const DataFile& file, const Account& account, Survey& survey);

}  // namespace corvantis::tool
