#pragma once

/// All that a client needs to audit workbooks: drilling, its options and what it finds, linked
/// books, the classes of a spreadsheet application, and the embedded one that opens files.
#include "qto/engine/drill_down.hpp"
#include "qto/host/host.hpp"
#include "qto/hosts/embedded/application.hpp"
#include "qto/links/link_list.hpp"
#include "qto/links/linked_books.hpp"
#include "qto/model/model_parts.hpp"
#include "qto/options/drill_options.hpp"
