// contact_schema.h: the tables of address.db3.
#pragma once

#include "common/database_file.h"

namespace pim_store {

extern const database_layout contact_layout;

} // namespace pim_store
