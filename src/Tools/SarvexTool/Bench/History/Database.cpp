#include "Tools/SarvexTool/Bench/History/Database.h"

#include "Tools/SarvexTool/Bench/Core/Utf8.h"
#include "Tools/SarvexTool/Bench/History/OpenServer.h"
#include "Tools/SarvexTool/Bench/History/SqliteDatabase.h"

namespace Bench {

namespace {

bool IsPlainText(std::string_view text) {
    while (!text.empty()) {
        const Utf8Character character = FirstCharacter(text);
        if (!character.isValid || character.code == 0)
            return false;
        text.remove_prefix(character.size);
    }
    return true;
}

} // namespace

void Database::CheckTexts(Values parameters) const {
    for (const Value& value : parameters) {
        const auto* const pText = std::get_if<std::string>(&value);
        if (pText != nullptr && !IsPlainText(*pText))
            Fail("takes no text that is not UTF-8 or has a NUL character");
    }
}

Transaction::Transaction(Database& database, OpenFor purpose) : m_database(database) {
    if (purpose == OpenFor::Writing)
        database.BeginWrite();
    else
        database.BeginRead();
}

Transaction::~Transaction() {
    if (m_isOpen)
        m_database.Rollback();
}

void Transaction::Commit() {
    m_database.Commit();
    m_isOpen = false;
}

std::unique_ptr<Database> OpenDatabase(const StoreName& name, OpenFor purpose) {
    if (name.IsServer())
        return OpenServer(name);
    return std::make_unique<SqliteDatabase>(name, purpose);
}

} // namespace Bench
