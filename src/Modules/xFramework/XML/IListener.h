#pragma once

// Public, stable within a major version. One thread at a time. Texts are the caller's and valid
// during the call.

namespace XML {

/// Receives the events of a document in their order. Texts are zero-terminated and valid during the
/// call only.
class IListener {
public:
    virtual ~IListener() = default;

    virtual void StartDocument() = 0;
    virtual void EndDocument() = 0;
    /// The source of the events gave up; no further event follows.
    virtual void Abort() = 0;
    virtual void StartElement(const char* name) = 0;
    /// Ends the innermost element that is open.
    virtual void EndElement() = 0;
    /// An attribute of the element that the last StartElement opened.
    virtual void Attribute(const char* name, const char* value) = 0;
    virtual void Text(const char* text) = 0;

protected:
    IListener() = default;
    IListener(const IListener&) = default;
    IListener& operator=(const IListener&) = default;
};

} // namespace XML
