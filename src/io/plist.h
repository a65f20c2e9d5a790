// Property lists: the value tree, its XML writer and its reader.
#pragma once

#include "io/plist_reader.h"
#include "io/plist_value.h"
#include "io/plist_writer.h"
