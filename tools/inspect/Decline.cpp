#include "Decline.hpp"

#include "Catalogue.hpp"
#include "websdk/json/Readings.hpp"

namespace websdk::inspect {
namespace {

// What a reading needs of a required key's value, or nothing when it takes
// any value that is there.
std::optional<std::string> expected(std::string_view reading, const JSONObject& field) {
  if (reading == "strictString") return "a JSON string";
  if (reading == "strictBool") return "a JSON bool";
  if (reading == "number") return "a JSON number (or a bool)";
  if (reading == "integer") return "a JSON integer";
  if (reading == "object" || reading == "stringMap") return "a JSON object";
  if (reading == "array") return "a JSON array";
  if (reading == "enumeration") {
    std::string values = "one of";
    if (const JSON* v = field.if_contains("values"))
      for (const auto& value : v->get_array()) values += " " + serialize(value);
    return values;
  }
  return std::nullopt;
}

bool accepts(std::string_view reading, const JSONObject& field, const JSON& value) {
  if (reading == "strictString") return value.is_string();
  if (reading == "strictBool") return value.is_bool();
  if (reading == "number") return value.is_number() || value.is_bool();
  if (reading == "integer") return value.is_int64() || value.is_uint64();
  if (reading == "object" || reading == "stringMap") return value.is_object();
  if (reading == "array") return value.is_array();
  if (reading == "enumeration") {
    if (const JSON* values = field.if_contains("values"))
      for (const auto& v : values->get_array())
        if (v == value) return true;
    return false;
  }
  return true;
}

// The first required key of `fields` that `object` fails, as a sentence.
std::optional<std::string> firstFault(const JSONArray& fields, const JSONObject* object, const std::string& within) {
  for (const auto& entry : fields) {
    const JSONObject& field = entry.get_object();
    const std::string key = within + std::string(field.at("key").get_string());
    const JSON* readings = field.if_contains("readings");
    const std::string_view reading =
        readings && !readings->get_array().empty() ? readings->get_array()[0].get_string() : std::string_view("raw");
    const JSON* value = object != nullptr ? object->if_contains(field.at("key").get_string()) : nullptr;
    const bool required = field.at("required").as_bool();
    if (required && value == nullptr) {
      const auto wanted = expected(reading, field);
      return "\"" + key + "\" is required (read as " + std::string(reading) + (wanted ? ", " + *wanted : "") +
             ") and is missing";
    }
    if (required && !accepts(reading, field, *value))
      return "\"" + key + "\" is read as " + std::string(reading) + ": expected " + *expected(reading, field) +
             ", got " + serialize(*value);
    if (const JSON* nested = field.if_contains("fields"); nested && value != nullptr && value->is_object())
      if (auto fault = firstFault(nested->get_array(), value->if_object(), key + "."); fault) return fault;
  }
  return std::nullopt;
}

}  // namespace

std::optional<std::string> whyDeclined(std::string_view requestText) {
  static const JSON contract = catalogue();
  const JSON request = parseJSON(requestText);
  const JSONObject* fields = request.if_object();
  if (fields == nullptr) return "the request is not a JSON object";
  const JSON* type = fields->if_contains("type");
  const std::string action = lenientString(type);
  const JSON* requestId = fields->if_contains("requestId");
  if (requestId == nullptr || !requestId->is_string())
    return "\"requestId\" is read as strictString: expected a JSON string, got " +
           (requestId ? serialize(*requestId) : std::string("nothing"));
  const JSON* payload = fields->if_contains("payload");
  const JSONObject* object = payload != nullptr ? payload->if_object() : nullptr;
  for (const auto& family : contract.at("families").get_array()) {
    for (const auto& row : family.at("actions").get_array()) {
      if (row.at("action").get_string() != action) continue;
      const std::string named = action + " (" + std::string(family.at("name").get_string()) + "): ";
      const std::string_view need = row.at("payload").get_string();
      if (need == "never") return named + "the action is refused whatever it carries";
      if (need == "required" && object == nullptr)
        return named + "\"payload\" is required (read as object, a JSON object) and is " +
               (payload == nullptr ? std::string("missing") : serialize(*payload));
      if (auto fault = firstFault(row.at("fields").get_array(), object, ""); fault) return named + *fault;
      return std::nullopt;
    }
  }
  return "\"type\" " + (type ? serialize(*type) : std::string("(missing)")) + " is no family's action";
}

}  // namespace websdk::inspect
