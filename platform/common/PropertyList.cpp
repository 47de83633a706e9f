#include "platform/PropertyList.h"

#include <plist/plist.h>
#include <unistr.h>

#include <cstdlib>
#include <limits>
#include <memory>
#include <utility>

namespace dormel {
namespace {

using Node = std::unique_ptr<void, decltype(&plist_free)>;
using CText = std::unique_ptr<char, void (*)(void*)>;

bool isUtf8(std::string_view text) {
  return u8_check(reinterpret_cast<const uint8_t*>(text.data()), text.size()) == nullptr &&
         text.find('\0') == std::string_view::npos;
}

/// A node that holds `value`; empty when a text in it cannot be written.
Node toNode(const PropertyListValue& value) {
  Node none(nullptr, &plist_free);
  struct Visitor {
    plist_t operator()(bool flag) const { return plist_new_bool(flag ? 1 : 0); }
    plist_t operator()(std::int64_t number) const { return plist_new_uint(static_cast<std::uint64_t>(number)); }
    plist_t operator()(double number) const { return plist_new_real(number); }
    plist_t operator()(const std::string& text) const {
      return isUtf8(text) ? plist_new_string(text.c_str()) : nullptr;
    }
    plist_t operator()(const PropertyListArray& items) const {
      Node array(plist_new_array(), &plist_free);
      for (const PropertyListValue& item : items) {
        Node node = toNode(item);
        if (!node) return nullptr;
        plist_array_append_item(array.get(), node.release());
      }
      return array.release();
    }
    plist_t operator()(const PropertyListDictionary& entries) const {
      Node dictionary(plist_new_dict(), &plist_free);
      for (const auto& [key, item] : entries) {
        Node node = toNode(item);
        if (!node || !isUtf8(key)) return nullptr;
        plist_dict_set_item(dictionary.get(), key.c_str(), node.release());
      }
      return dictionary.release();
    }
  };
  return {std::visit(Visitor{}, value.value), &plist_free};
}

// Property lists that mean anything to us are three levels deep; more than this is an attack on our stack.
constexpr int MAX_DEPTH = 64;

std::optional<PropertyListValue> fromNode(plist_t node, int depth);

PropertyListArray fromArray(plist_t node, int depth) {
  PropertyListArray items;
  for (std::uint32_t i = 0; i < plist_array_get_size(node); ++i) {
    if (auto item = fromNode(plist_array_get_item(node, i), depth)) items.push_back(std::move(*item));
  }
  return items;
}

PropertyListDictionary fromDictionary(plist_t node, int depth) {
  PropertyListDictionary entries;
  plist_dict_iter raw = nullptr;
  plist_dict_new_iter(node, &raw);
  const std::unique_ptr<void, void (*)(void*)> iterator(raw, std::free);
  for (;;) {
    char* key = nullptr;
    plist_t item = nullptr;
    plist_dict_next_item(node, iterator.get(), &key, &item);
    if (item == nullptr) return entries;
    const CText owned(key, std::free);
    if (!isUtf8(key)) continue;
    if (auto value = fromNode(item, depth)) entries.insert_or_assign(key, std::move(*value));
  }
}

std::optional<PropertyListValue> fromNode(plist_t node, int depth) {
  if (node == nullptr || depth > MAX_DEPTH) return {};
  PropertyListValue result;
  switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN: {
      uint8_t flag = 0;
      plist_get_bool_val(node, &flag);
      result.value = flag != 0;
      return result;
    }
    case PLIST_UINT: {
      std::uint64_t number = 0;
      plist_get_uint_val(node, &number);
      result.value = static_cast<std::int64_t>(number);
      return result;
    }
    case PLIST_REAL: {
      double number = 0;
      plist_get_real_val(node, &number);
      result.value = number;
      return result;
    }
    case PLIST_STRING: {
      char* text = nullptr;
      plist_get_string_val(node, &text);
      const CText owned(text, std::free);
      // The library takes any bytes for text, and a character reference may stand for what is none.
      if (text != nullptr && !isUtf8(text)) return {};
      result.value = std::string(text == nullptr ? "" : text);
      return result;
    }
    case PLIST_ARRAY:
      result.value = fromArray(node, depth + 1);
      return result;
    case PLIST_DICT:
      result.value = fromDictionary(node, depth + 1);
      return result;
    default:
      return {};
  }
}

}  // namespace

std::optional<std::string> writeXmlPropertyList(const PropertyListValue& root) {
  const Node node = toNode(root);
  if (!node) return {};
  char* xml = nullptr;
  std::uint32_t length = 0;
  plist_to_xml(node.get(), &xml, &length);
  const CText owned(xml, std::free);
  if (xml == nullptr) return {};
  return std::string(xml, length);
}

std::optional<PropertyListValue> readXmlPropertyList(std::string_view xml) {
  if (xml.empty() || xml.size() > std::numeric_limits<std::uint32_t>::max() || !isUtf8(xml)) return {};
  plist_t raw = nullptr;
  plist_from_xml(std::string(xml).c_str(), static_cast<std::uint32_t>(xml.size()), &raw);
  const Node node(raw, &plist_free);
  return fromNode(node.get(), 0);
}

}  // namespace dormel
