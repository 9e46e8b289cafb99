// Where the table of positions ends that a walk has reached.
#pragma once

#include "bytes/FileView.h"
#include "survey/Account.h"
#include "survey/Survey.h"

namespace corvantis::reading {

// Completes the survey with the table's entries and what lies behind them.
void FindTableEnd(const FileView& file, const Account& account, Survey& survey);

}  // namespace corvantis::reading
