// settings::core::detail::sharedSchemaGrammar: the settings schema compiled once per process
// and shared, read-only, by the readers of every thread.
#pragma once

#include <xercesc/framework/XMLGrammarPool.hpp>

#include <memory>
#include <string>

namespace settings {
namespace core {
namespace detail {

// A locked grammar pool holding the schema at `schemaPath` (a local file path, not a URL),
// compiled with the features every settings reader uses. Null when the file cannot be
// compiled: missing, unreadable or not a valid schema. The caller then gives its reader no
// pool, so that the reader loads the schema itself and fails exactly as it would without any
// cache.
//
// Pools are kept per path, since the installation root may change while the process runs,
// and each is checked against the file's identity, size and modification time on every call
// (one stat), so a schema replaced on disk is compiled anew. A failure is never kept: the
// next call tries again. A few paths are remembered, the least recently used forgotten
// first; a forgotten pool lives on as long as a reader holds it.
//
// Thread-safe. Starts the parser library if need be; returns null if it cannot.
std::shared_ptr<xercesc::XMLGrammarPool> sharedSchemaGrammar(const std::string& schemaPath);

}  // namespace detail
}  // namespace core
}  // namespace settings
