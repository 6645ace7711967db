// settings::core::XMLNode: the base of the objects that stand for the open elements of a
// settings file while it is parsed, and XMLLeafNode, the base of the elements without children.
//
// Each object is built from its element's attributes when the tag opens, takes the element's
// character data (setText), builds its children through its class's table of factories
// (createChild), and hands its result to its parent when the tag closes (finish). The objects
// build the real settings nodes as they go; when the document element closes a complete
// standalone tree exists and the objects are dropped. They are used by the one thread that
// parses; the factory tables are built once and shared.
#pragma once

#include <settingscore/core/detail/TreeLock.hpp>
#include <settingscore/core/xml/detail/ElementPool.hpp>

#include <boost/enable_shared_from_this.hpp>
#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

#include <xercesc/sax2/Attributes.hpp>

#include <functional>
#include <map>
#include <stdexcept>
#include <string>

namespace settings {
namespace core {

class SettingsImpl;

class XMLNode : public boost::enable_shared_from_this<XMLNode> {
public:
    using NodePtr = boost::shared_ptr<XMLNode>;
    // Builds the object of a child element from its attributes and its parent object.
    using Factory = NodePtr (*)(const xercesc::Attributes& attributes, const NodePtr& parent);
    // Tag (local name) to factory: the children an element admits.
    using ChildFactories = std::map<std::string, Factory, std::less<>>;

    explicit XMLNode(const NodePtr& parent);
    virtual ~XMLNode();
    XMLNode(const XMLNode&) = delete;
    XMLNode& operator=(const XMLNode&) = delete;

    // The tree node this element works on: by default the parent's, null at the top.
    virtual boost::shared_ptr<SettingsImpl> getSettings() const;
    // Takes one run of character data. By default an element takes none and this throws
    // XMLParserErrorUnexpectedTextContent (full name of getSettings(), tag).
    virtual void setText(const std::wstring& text);
    virtual std::string getTagName() const = 0;
    // The closing tag has been seen. Does nothing by default.
    virtual void finish();
    virtual const ChildFactories& getChildFactories() const = 0;

    // The object of child element `tag`, built by this class's factory for it.
    // XMLParserErrorIllegalTagName (full name of getSettings(), `tag`, this tag) when the table
    // has no such tag, whatever the schema admitted.
    NodePtr createChild(const std::string& tag, const xercesc::Attributes& attributes);
    const NodePtr& getParent() const { return parent_; }

    // The factory of class C: C built from (attributes, parent), in the memory of the parse's
    // element pool when the parent has one.
    template <class C>
    static NodePtr make(const xercesc::Attributes& attributes, const NodePtr& parent) {
        if (parent && parent->pool_) {
            return boost::allocate_shared<C>(detail::PoolAllocator<C>(*parent->pool_), attributes,
                                             parent);
        }
        return boost::make_shared<C>(attributes, parent);
    }

protected:
    // The lock of the parse that builds this object's tree (the handler's, handed down from
    // the document element), or null for an object built outside a parse, whose nodes the
    // process's tree locks guard.
    detail::UniqueFromUpgrade* buildLock() const { return buildLock_; }

    // The full name of getSettings() for messages; empty when there is none.
    std::string settingsFullName() const;

    // The parent object as the class that the factory tables make it: a "value" is only ever
    // built below a type element, a type element below a key, and so on. std::logic_error
    // should that ever not hold.
    template <class P>
    P& parentAs() const {
        P* const typed = dynamic_cast<P*>(parent_.get());
        if (!typed) {
            throw std::logic_error("settings file element <" + getTagName() +
                                   "> below an element of an unexpected kind");
        }
        return *typed;
    }

private:
    friend class SettingsSaxHandler;  // gives the document element its parse's lock and pool

    // Keeps the open chain alive: a parent outlives its children's objects.
    const NodePtr parent_;
    detail::UniqueFromUpgrade* buildLock_;
    // Where the children's objects are made, the parse's (handed down like the lock); null
    // outside a parse.
    detail::ElementPool* pool_;
};

// An element without child elements: every child tag is refused.
class XMLLeafNode : public XMLNode {
public:
    using XMLNode::XMLNode;
    const ChildFactories& getChildFactories() const override;
};

}  // namespace core
}  // namespace settings
