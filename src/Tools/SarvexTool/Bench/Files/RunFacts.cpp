#include "Tools/SarvexTool/Bench/Files/RunFacts.h"

#include "Modules/xFramework/OSAL/DurableFile.h"
#include "Tools/SarvexTool/Bench/Files/BadFile.h"
#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "Tools/SarvexTool/Bench/Files/Input.h"
#include "Tools/SarvexTool/Bench/Files/JsonFields.h"
#include "Tools/SarvexTool/Bench/Files/RunSourceFields.h"

#include <algorithm>
#include <filesystem>
#include <sstream>

namespace Bench {

namespace {

/// Grows when an older program would misunderstand what is written.
constexpr std::uint64_t formatVersion = 1;

Json ToJson(const RunOptions& options) {
    Json json{{"segment", options.segment},
              {"answerTimeout", options.answerTimeout},
              {"retries", options.retries},
              {"wait", options.wait},
              {"stopTimeout", options.stopTimeout}};
    if (options.limits)
        PutText(json, "limits", *options.limits);
    json["failFast"] = options.failFast;
    json["force"] = options.force;
    PutText(json, "client", options.client);
    PutTexts(json, "firstCommand", options.firstCommand);
    json["firstCommandAnswered"] = options.firstCommandAnswered;
    json["firstCommandAccepted"] = options.firstCommandAccepted;
    if (options.keep)
        json["keep"] = true;
    if (options.store)
        PutText(json, "store", *options.store);
    return json;
}

RunOptions OptionsOf(const JsonFields& fields) {
    RunOptions options;
    options.segment = fields.Line("segment");
    options.answerTimeout = fields.Seconds("answerTimeout");
    options.retries = fields.Line("retries");
    options.wait = fields.Seconds("wait");
    options.stopTimeout = fields.Seconds("stopTimeout");
    if (fields.Has("limits"))
        options.limits = fields.Text("limits");
    options.failFast = fields.Flag("failFast");
    options.force = fields.Flag("force");
    options.client = fields.Text("client");
    options.firstCommand = fields.Texts("firstCommand");
    options.firstCommandAnswered = fields.Flag("firstCommandAnswered");
    options.firstCommandAccepted = fields.Flag("firstCommandAccepted");
    options.keep = fields.Has("keep") && fields.Flag("keep");
    if (fields.Has("store"))
        options.store = fields.Text("store");
    return options;
}

/// Who, when and what.
void PutOrigin(Json& json, const RunFacts& facts) {
    PutText(json, "programVersion", facts.programVersion);
    PutText(json, "clientSha256", facts.clientSha256);
    PutText(json, "user", facts.user);
    PutText(json, "host", facts.host);
    json["started"] = facts.started;
    if (facts.ended)
        json["ended"] = *facts.ended;
    Json testFile = Json::object();
    PutText(testFile, "name", facts.testFile.name);
    testFile["sha256"] = facts.testFile.sha256;
    json["testFile"] = testFile;
    PutText(json, "daemon", facts.daemon);
    PutPlace(json, facts.place);
    if (facts.firmware)
        PutText(json, "firmware", *facts.firmware);
    if (facts.note)
        PutText(json, "note", *facts.note);
    if (facts.macType)
        json["macType"] = *facts.macType;
    if (facts.countryCode)
        PutText(json, "countryCode", *facts.countryCode);
}

/// How far it has come.
void PutState(Json& json, const RunFacts& facts) {
    json["startPassedOn"] = facts.startPassedOn;
    json["stopConfirmed"] = facts.stopConfirmed;
    json["linesTotal"] = facts.linesTotal;
    json["linesDone"] = facts.linesDone;
    PutText(json, "outcome", facts.outcome);
    if (facts.exitCode)
        json["exitCode"] = *facts.exitCode;
    PutTexts(json, "notes", facts.notes);
    json["closesIdleConnections"] = facts.closesIdleConnections;
}

template <typename Items>
Json ListOf(const Items& items) {
    Json list = Json::array();
    for (const auto& item : items)
        list.push_back(ToJson(item));
    return list;
}

/// What only merged runs have.
void PutMerged(Json& json, const RunFacts& facts) {
    if (!facts.isMerged)
        return;
    json["merged"] = true;
    json["sources"] = ListOf(facts.sources);
    json["otherAttempts"] = ListOf(facts.otherAttempts);
}

void ReadMerged(const JsonFields& fields, RunFacts& facts) {
    facts.isMerged = fields.Has("merged") && fields.Flag("merged");
    if (!facts.isMerged)
        return;
    for (const JsonFields& source : fields.Objects("sources"))
        facts.sources.push_back(RunSourceOf(source));
    for (const JsonFields& attempt : fields.Objects("otherAttempts"))
        facts.otherAttempts.push_back(OtherAttemptOf(attempt));
}

void ReadOrigin(const JsonFields& fields, RunFacts& facts) {
    facts.programVersion = fields.Text("programVersion");
    facts.clientSha256 = fields.Text("clientSha256");
    facts.user = fields.Text("user");
    facts.host = fields.Text("host");
    facts.started = fields.Text("started");
    if (fields.Has("ended"))
        facts.ended = fields.Text("ended");
    const JsonFields testFile = fields.Object("testFile");
    facts.testFile = {testFile.Text("name"), testFile.Text("sha256")};
    facts.daemon = fields.Text("daemon");
    facts.place = PlaceOf(fields);
    if (fields.Has("firmware"))
        facts.firmware = fields.Text("firmware");
    if (fields.Has("note"))
        facts.note = fields.Text("note");
    if (fields.Has("macType"))
        facts.macType = fields.Integer("macType");
    if (fields.Has("countryCode"))
        facts.countryCode = fields.Text("countryCode");
}

void ReadState(const JsonFields& fields, RunFacts& facts) {
    facts.startPassedOn = fields.Flag("startPassedOn");
    facts.stopConfirmed = fields.Flag("stopConfirmed");
    facts.linesTotal = fields.Count("linesTotal");
    facts.linesDone = fields.Count("linesDone");
    facts.outcome = fields.Text("outcome");
    if (fields.Has("exitCode"))
        facts.exitCode = fields.Integer("exitCode");
    facts.notes = fields.Texts("notes");
    facts.closesIdleConnections = fields.Flag("closesIdleConnections");
}

RunFacts FactsOf(const JsonFields& fields) {
    if (fields.Count("format") != formatVersion)
        throw WrongJson("the run was written by another version of this program");
    RunFacts facts;
    ReadOrigin(fields, facts);
    facts.options = OptionsOf(fields.Object("options"));
    ReadState(fields, facts);
    ReadMerged(fields, facts);
    return facts;
}

} // namespace

void RunFacts::AddNote(const std::string& text) {
    if (std::find(notes.begin(), notes.end(), text) == notes.end())
        notes.push_back(text);
}

std::string ToJsonText(const RunFacts& facts) {
    constexpr int indentation = 2;
    Json json{{"format", formatVersion}};
    PutOrigin(json, facts);
    json["options"] = ToJson(facts.options);
    PutState(json, facts);
    PutMerged(json, facts);
    return json.dump(indentation, ' ', true) + "\n";
}

RunFacts ParseRunFacts(std::string_view text, const std::string& name) {
    try {
        return FactsOf(JsonFields::Parse(text));
    } catch (const WrongJson& wrong) {
        throw BadInput(name, wrong.what());
    }
}

RunFacts ReadRunFacts(const std::string& name) {
    std::istringstream noStandardInput;
    return ParseRunFacts(ReadInput(name, noStandardInput), name);
}

void WriteRunFacts(const std::string& name, const RunFacts& facts) {
    const std::string beside = name + ".part";
    {
        OSAL::DurableFile file(beside, OSAL::DurableFile::Opening::Either);
        // One that a crash has left.
        file.Truncate(0);
        file.Append(ToJsonText(facts));
        file.Sync();
    }
    std::filesystem::rename(PathOf(beside), PathOf(name));
    const std::filesystem::path folder = PathOf(name).parent_path();
    OSAL::SyncDirectory(folder.empty() ? "." : NameOf(folder));
}

} // namespace Bench
