// organizer_schema.h: the tables of organizer.db3.
#pragma once

#include "common/database_file.h"

namespace pim_store {

extern const database_layout organizer_layout;

} // namespace pim_store
