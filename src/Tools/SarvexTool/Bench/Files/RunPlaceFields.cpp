#include "Tools/SarvexTool/Bench/Files/RunPlaceFields.h"

#include "Tools/SarvexTool/Bench/Files/BadFile.h"
#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "Tools/SarvexTool/Bench/Files/Input.h"

#include <filesystem>
#include <sstream>

namespace Bench {

void PutPlace(Json& object, const RunPlace& place) {
    if (place.bench)
        PutText(object, "bench", *place.bench);
    if (place.device)
        PutText(object, "device", *place.device);
    if (place.attempt)
        object["attempt"] = *place.attempt;
}

RunPlace PlaceOf(const JsonFields& fields) {
    RunPlace place;
    if (fields.Has("bench"))
        place.bench = fields.Text("bench");
    if (fields.Has("device"))
        place.device = fields.Text("device");
    if (fields.Has("attempt"))
        place.attempt = fields.Line("attempt");
    return place;
}

RunPlace ReadPlace(const std::string& factsName) {
    std::error_code ignored;
    if (!std::filesystem::exists(PathOf(factsName), ignored))
        return {};
    std::istringstream noStandardInput;
    const std::string text = ReadInput(factsName, noStandardInput);
    try {
        return PlaceOf(JsonFields::Parse(text));
    } catch (const WrongJson& wrong) {
        throw BadInput(factsName, wrong.what());
    }
}

} // namespace Bench
