// The walk that writes a node's subtree as settings file text (SettingsImpl::writeSettings),
// and the key fields that the value writers read. A friend of SettingsImpl.
#pragma once

#include <settingscore/core/ArraySizeBounds.hpp>
#include <settingscore/core/callouts/CalloutVariants.hpp>
#include <settingscore/core/detail/TreeLock.hpp>
#include <settingscore/core/storage/detail/ProductFileState.hpp>
#include <settingscore/core/xml/ValueWriters.hpp>

#include <boost/optional.hpp>

#include <string>
#include <utility>
#include <vector>

namespace settings {
namespace core {

class SettingsImpl;

namespace detail {

// The state of one writeSettings call: the text written so far, the level being written, the
// levels after it in the level table, and the nodes whose opening tag is out and not yet
// closed. This state belongs to the call and never to the nodes, because several threads may
// write the same product at once, each under a shared hold of the root mutex.
struct WriteContext {
    // Appends to `out`; `level` must outlive the context.
    WriteContext(std::string& out, const std::string& level);

    std::string& out;
    const std::string& level;
    // Open tags always form one chain from the document element down, so a short list in
    // opening order is all it takes.
    std::vector<const SettingsImpl*> openTags;
    // The levels after `level` in the level table, found once per call rather than per key.
    std::vector<std::string> laterLevels;
    // What the file held that the tree could not take, by full name: each is written in place
    // of its node while that holds nothing at the level. Null or empty for most writes; when
    // there are entries, `path` follows the walk (the full name of the node being written).
    const HeldBackMap* heldBack = nullptr;
    std::string path;

    // Marks `node` open; false when it already was.
    bool markOpen(const SettingsImpl* node);
    // Marks `node` closed; false when it was not open.
    bool markClosed(const SettingsImpl* node);
};

class NodeWriter {
public:
    // The whole text of writeSettings for `node` at `level` (none: the effective stored
    // values), appended to `out`: `node` with its ancestors' frame, and what `heldBack` holds
    // written back in place of the nodes it belongs to. UnSupportedLevel for a level outside
    // the level table.
    static void writeDocument(const ReadAccess& lock, const SettingsImpl& node,
                              const std::string& level, std::string& out,
                              const HeldBackMap* heldBack = nullptr);
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
    // Each ancestor's validator, repeated before every descendant opened below it, with the
    // depth it goes out at; only validators that write something are kept.
    using RepeatedValidators = std::vector<std::pair<const ValidatorVariant*, int>>;

    // The content and the closing tag of `node`, whose opening tag and ancestors are out, at
    // `depth`; `repeated` holds what goes before each child (see openChain).
    static void writeBody(const ReadAccess& lock, const SettingsImpl& node, WriteContext& context,
                          int depth, RepeatedValidators& repeated);
    // What openChain repeats before `node` at `depth`, found by one walk up.
    static RepeatedValidators repeatedValidatorsOf(const ReadAccess& lock, const SettingsImpl& node,
                                                   int depth);
    static void writeOpenTag(const ReadAccess& lock, const SettingsImpl& node,
                             WriteContext& context, int depth, bool isDocumentElement);
    static void writeCloseTag(const SettingsImpl& node, WriteContext& context, int depth);
    // Whether a level after the context's level in the level table stores a value for `key`.
    static bool isHeldAfter(const ReadAccess& lock, const SettingsImpl& key,
                            const WriteContext& context);
    // The key's value writer; a key whose type is known but that has no writer yet gets the
    // writer of its type code.
    static ValueWriter valueWriterOf(const SettingsImpl& key);
    // Whether nothing below or at `node` would be written for `level`: no stored value there
    // and no run-time default that belongs there.
    static bool holdsNothingAt(const ReadAccess& lock, const SettingsImpl& node,
                               const std::string& level);
    static boost::optional<int> typeCodeOf(const SettingsImpl& key);
};

}  // namespace detail
}  // namespace core
}  // namespace settings
