// The document's structures: annotated groups, and targets. Their texts are the host's, escaped.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "markup/escaped_text.h"
#include "markup/markup_text.h"

namespace qz {

// Each kind of group writes its start tag, with its attributes in its own order.
class Group {
 public:
  std::string_view endTag() const { return endTag_; }
  virtual void writeStartTag(MarkupText& out) const = 0;

 protected:
  explicit Group(std::string_view endTag) : endTag_(endTag) {}
  ~Group() = default;

 private:
  const std::string_view endTag_;
};

class FormField final : public Group {
 public:
  // The type data is bytes at any address; that of a date starts with eight bytes which are read
  // whatever the size says.
  FormField(uint16_t fieldType, uint8_t fieldFlags, uint8_t exFieldFlags, const RECT& bounds,
            const CodeUnit* name, int32_t nameLength, const void* typeData, int32_t typeDataSize);
  void writeStartTag(MarkupText& out) const override;

 private:
  const uint16_t fieldType_;
  const uint8_t fieldFlags_;
  const uint8_t exFieldFlags_;
  const RECT bounds_;
  const EscapedText name_;
  const std::optional<uint64_t> date_;
  const Utf16String typeDataUnits_;
  const EscapedText typeData_;
};

class Link final : public Group {
 public:
  Link(uint16_t linkType, const CodeUnit* target, int32_t targetLength);
  void writeStartTag(MarkupText& out) const override;

 private:
  const uint16_t linkType_;
  const EscapedText target_;
};

class SignatureField final : public Group {
 public:
  SignatureField(const RECT& bounds, const CodeUnit* name, int32_t nameLength,
                 const CodeUnit* infoData, int32_t infoDataSize);
  void writeStartTag(MarkupText& out) const override;

 private:
  const RECT bounds_;
  const EscapedText name_;
  const EscapedText infoData_;
};

// A position that links can lead to.
class DocumentTarget {
 public:
  DocumentTarget(const POINT& position, const CodeUnit* name, int32_t nameLength)
      : position_(position), name_(name, nameLength) {}
  void write(MarkupText& out) const;
  bool usesExtensionNamespace() const { return true; }

 private:
  const POINT position_;
  const EscapedText name_;
};

}  // namespace qz
