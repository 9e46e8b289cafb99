// Putting amounts into the fields of a record, by its description.
#pragma once

#include "ITCFileIO/RecordFields.h"
#include "protocol/Amounts.h"

namespace corvantis::rig {

struct Amount {
    Node node;
    double value = 0;  // in what is stored, not yet whole
};

// One element of a field. Throws a Failure where its kind cannot hold the amount.
void StoreAmount(const Amount& amount, const Field& field, size_t element, void* record);
// A text, cut by nothing: throws a Failure if it is too long.
void StoreText(const Node& node, std::string_view text, const Field& field, size_t element,
               void* record);

int32_t WholeAt(const void* record, int32_t place);
void StoreWholeAt(void* record, int32_t place, int32_t value);

}  // namespace corvantis::rig
