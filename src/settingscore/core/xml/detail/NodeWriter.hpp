// The walk that writes a node's subtree as settings file text (SettingsImpl::writeSettings),
// and the key fields that the value writers read. A friend of SettingsImpl.
#pragma once

#include <settingscore/core/ArraySizeBounds.hpp>
#include <settingscore/core/callouts/CalloutVariants.hpp>
#include <settingscore/core/detail/TreeLock.hpp>
#include <settingscore/core/xml/ValueWriters.hpp>

#include <boost/optional.hpp>

#include <ostream>
#include <string>
#include <unordered_set>

namespace settings {
namespace core {

class SettingsImpl;

namespace detail {

// The state of one writeSettings call: where the text goes, the level being written, and the
// nodes whose opening tag is out and not yet closed. This state belongs to the call and never
// to the nodes, because several threads may write the same product at once, each under a
// shared hold of the root mutex.
struct WriteContext {
    std::ostream& out;
    const std::string& level;
    std::unordered_set<const SettingsImpl*> openTags;
};

class NodeWriter {
public:
    // Writes `node` at indent `depth` with the chain of its ancestors opened first (those not
    // open yet), then its content, then its closing tag. Ancestors stay open.
    static void writeTree(const ReadAccess& lock, const SettingsImpl& node, WriteContext& context,
                          int depth);
    // Opens the ancestors of `node` below the root, outermost first, repeats each one's
    // validator after it, and opens `node` itself unless it is open already. The document's
    // first element (the node without a parent or under the root) brings the XML declaration
    // and the namespace attributes.
    static void openChain(const ReadAccess& lock, const SettingsImpl& node, WriteContext& context,
                          int depth);
    // Closes the open ancestors of `node`, from its parent outwards, the first at `depth`.
    static void closeAncestors(const ReadAccess& lock, const SettingsImpl& node,
                               WriteContext& context, int depth);

    // Closes `node` at `depth` if its opening tag is out (the frame of an export).
    static void closeNode(const SettingsImpl& node, WriteContext& context, int depth);
    // Stamps a product node with the version a factory file declares.
    static void setVersion(const UniqueFromUpgrade& lock, SettingsImpl& product, unsigned version);

    // What the value writers read of a key: its run-time default (with its belonging level)
    // and its array limits, none when the key has no limits yet.
    static const RunTimeDefaultVariant& runTimeDefaultOf(const ReadAccess& lock,
                                                         const SettingsImpl& key);
    static boost::optional<ArraySizeBounds> arrayBoundsOf(const ReadAccess& lock,
                                                          const SettingsImpl& key);

private:
    static void writeOpenTag(const ReadAccess& lock, const SettingsImpl& node,
                             WriteContext& context, int depth, bool isDocumentElement);
    static void writeCloseTag(const SettingsImpl& node, WriteContext& context, int depth);
    // Whether a level after `level` in the level table stores a value for `key`.
    static bool isHeldAfter(const ReadAccess& lock, const SettingsImpl& key,
                            const std::string& level);
    // The key's value writer; a key whose type is known but that has no writer yet gets the
    // writer of its type code.
    static ValueWriter valueWriterOf(const SettingsImpl& key);
    static boost::optional<int> typeCodeOf(const SettingsImpl& key);
};

}  // namespace detail
}  // namespace core
}  // namespace settings
