// settings::core::SettingsSaxHandler: the parser's content handler for settings files. It
// keeps the open elements' objects on a stack and turns one document into one standalone
// settings tree plus the list of further files that the document names.
#pragma once

#include <settingscore/core/SettingsFwd.hpp>
#include <settingscore/core/xml/XMLNode.hpp>
#include <settingscore/core/xml/detail/BuildLock.hpp>
#include <settingscore/core/xml/detail/ElementPool.hpp>

#include <boost/shared_ptr.hpp>

#include <xercesc/sax2/DefaultHandler.hpp>

#include <cstddef>
#include <deque>
#include <string>
#include <vector>

namespace settings {
namespace core {

// Element callbacks work on the stack: startElement pushes the object of the new element
// (the document element from a table with one row, "settings" making an XMLTopSettingsNode;
// every other element from its parent's createChild), characters hands text to the innermost
// object, and endElement pops it and calls its finish, or, for the document element, keeps
// its tree as the result and its additional paths for popAdditionalPath.
//
// A message failure (hf::except::IMsgIDException) raised in those three callbacks leaves as a
// xercesc::SAXException carrying the catalogue text of the message; every other exception
// (numeric overflow, boost::bad_lexical_cast, the tree's own failures) passes through the
// parser unchanged. Errors of the parser itself go to the error handler, not here.
//
// Three refusals guard against hostile files, each as a SAXException with its own text:
// an element nested deeper than maxDepth levels ("Elements nested deeper than 256 levels"),
// refused before anything is built for it, since the cost of building grows with the depth;
// an element's text beyond maxTextLength characters ("Element texts longer than 1048576
// characters"), refused before it reaches the element's object, since the text is kept in
// memory outside the parser's own budget; and, as the reader's lexical handler, a document type
// declaration with a subset ("Settings files have no document type declaration"), refused before
// the subset is read.
//
// One handler may serve several parses in turn, on one thread. Its build lock (BuildLock.hpp)
// is the tree lock of every node that its documents build.
class SettingsSaxHandler : public xercesc::DefaultHandler {
public:
    // The deepest nesting admitted, the document element being level 1. The deepest settings
    // file the writer makes is a product with its groups, a key and its type element, value
    // and metadata: far below this.
    static constexpr std::size_t maxDepth = 256;
    // The longest text of one element, counted in UTF-16 units as the parser delivers it:
    // far beyond any real value, small enough to keep a hostile text cheap.
    static constexpr std::size_t maxTextLength = 1u << 20;

    SettingsSaxHandler();
    ~SettingsSaxHandler() override;

    // Forgets the open elements of a parse that ended in a failure.
    void startDocument() override;
    // Throws SAXException "Illegal tag encountered at the beginning of the Settings XMLfile"
    // for a document element other than "settings", and "Elements nested deeper than 256
    // levels" for an element below maxDepth open ones.
    void startElement(const XMLCh* const uri, const XMLCh* const localName,
                      const XMLCh* const qName, const xercesc::Attributes& attributes) override;
    // Throws SAXException "Mismatch in tag hierarchy between parser and node stack" should the
    // closing tag not be the innermost open element's.
    void endElement(const XMLCh* const uri, const XMLCh* const localName,
                    const XMLCh* const qName) override;
    // Throws SAXException "Element texts longer than 1048576 characters" when the text of the
    // innermost element grows past maxTextLength.
    void characters(const XMLCh* const chars, const XMLSize_t length) override;
    // Throws SAXException "Settings files have no document type declaration".
    void startDTD(const XMLCh* const name, const XMLCh* const publicId,
                  const XMLCh* const systemId) override;

    // What the last document produced: its product node, null until a document element closed.
    boost::shared_ptr<Settings> getResult() const { return result_; }
    // The caller passes null before each parse.
    void setResult(const boost::shared_ptr<Settings>& result) { result_ = result; }
    // Moves the last path still to be read into `path` and removes it; false when none is left.
    // Paths are thus taken last first.
    bool popAdditionalPath(std::wstring& path);

private:
    detail::BuildLock buildLock_;
    // Before the stack: the objects on it are made from the pool and must go first.
    detail::ElementPool elementPool_;
    std::deque<boost::shared_ptr<XMLNode>> stack_;
    std::size_t textLength_ = 0;  // of the innermost element since its last child or start
    std::wstring text_;           // the run being handed over; its memory serves every run
    boost::shared_ptr<Settings> result_;
    std::vector<std::wstring> additionalPaths_;
};

}  // namespace core
}  // namespace settings
