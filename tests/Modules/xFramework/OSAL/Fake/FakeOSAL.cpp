#include "Modules/xFramework/OSAL/ChildProcess.h"
#include "Modules/xFramework/OSAL/Console.h"
#include "Modules/xFramework/OSAL/CriticalSection.h"
#include "Modules/xFramework/OSAL/DebugOutput.h"
#include "Modules/xFramework/OSAL/Interruption.h"
#include "tests/Modules/xFramework/OSAL/Fake/World.h"

#include <algorithm>
#include <cstring>
#include <system_error>

namespace OSAL {

using Fake::TheWorld;

namespace {

void Record(const std::string& call) {
    TheWorld().calls.push_back(call);
}

const Fake::File* FindFile(const std::string& path) {
    const auto found = TheWorld().files.find(path);
    return found == TheWorld().files.end() ? nullptr : &found->second;
}

std::size_t CopyOut(const std::string& text, char* buffer, std::size_t size) {
    const std::size_t count = std::min(size, text.size());
    std::memcpy(buffer, text.data(), count);
    return count;
}

} // namespace

// Console

std::vector<std::string> ReadArguments(int argc, const char* const argv[]) {
    return {argv + (argc > 0 ? 1 : 0), argv + argc};
}

bool IsTerminal(StandardStream stream) {
    return TheWorld().terminals.contains(stream);
}

std::optional<std::size_t> TerminalWidth(StandardStream stream) {
    const auto found = TheWorld().terminalWidths.find(stream);
    if (found == TheWorld().terminalWidths.end())
        return std::nullopt;
    return found->second;
}

PreparedConsole::PreparedConsole() {
    Record("PreparedConsole");
}

PreparedConsole::~PreparedConsole() = default;

HeldInterruption::HeldInterruption() {
    ++TheWorld().heldInterruptions;
}

HeldInterruption::~HeldInterruption() {
    --TheWorld().heldInterruptions;
}

bool HeldInterruption::IsWanted() {
    return TheWorld().isEndWanted;
}

bool AreSameFileName(const std::string& first, const std::string& second) {
    return first == second;
}

// Processes

const char PathSeparator = '/';
const char* const ExecutableSuffix = ".exe ";

struct Pipe {};

void PrepareStandardStreams() {}

std::uint64_t ProcessId() {
    constexpr std::uint64_t anyId = 4711;
    return anyId;
}

int Sleep(std::uint32_t milliseconds) {
    Record("Sleep " + std::to_string(milliseconds));
    TheWorld().onSleep();
    return 0;
}

std::uint32_t GetLastError() {
    return TheWorld().lastError;
}

bool ReadModulePath(std::string& path) {
    if (TheWorld().modulePathReadable)
        path = TheWorld().modulePath;
    return TheWorld().modulePathReadable;
}

std::string ModulePathInUtf8() {
    return TheWorld().modulePathReadable ? TheWorld().modulePath : "";
}

std::optional<std::string> EnvironmentVariable(const std::string& name) {
    const auto found = TheWorld().environment.find(name);
    return found == TheWorld().environment.end() ? std::nullopt : std::optional(found->second);
}

bool CreateChildProcess(const std::string& executablePath, const std::string& commandLine,
                        const std::string& workingDirectory, bool newConsole,
                        ProcessInformation& information) {
    Record("CreateChildProcess [" + executablePath + "] [" + commandLine + "] [" +
           workingDirectory + "] " + (newConsole ? "new console" : "same console"));
    if (TheWorld().childStarts)
        information = {OwnedHandle(11), OwnedHandle(12)};
    return TheWorld().childStarts;
}

std::string TaskListCommand(const std::string& name) {
    return "list " + name;
}

Pipe* OpenPipe(const std::string& command) {
    Record("OpenPipe " + command);
    return TheWorld().pipeOpens ? new Pipe : nullptr;
}

std::size_t ReadPipe(Pipe*, char* buffer, std::size_t size) {
    Record("ReadPipe " + std::to_string(size));
    TheWorld().onReadPipe();
    return CopyOut(TheWorld().pipeOutput, buffer, size);
}

void ClosePipe(Pipe* pipe) {
    Record("ClosePipe");
    delete pipe;
}

int ToExitStatus(int returnCode) {
    return returnCode;
}

bool CloseHandle(Handle handle) {
    Record("CloseHandle " + (handle == InvalidHandle ? "invalid" : std::to_string(handle)));
    return handle != InvalidHandle;
}

// Files

namespace {
/// What is still to be read of the file that is open, if any; its handle is 7.
std::string unread;
bool fileIsOpen = false;
constexpr Handle openFileHandle = 7;
} // namespace

PathKind LookAtPath(const std::string& path) {
    const Fake::File* file = FindFile(path);
    return file == nullptr ? PathKind() : file->kind;
}

std::uint32_t CountNames(const std::string& path) {
    const Fake::File* file = FindFile(path);
    return file == nullptr ? 0 : file->hardLinks;
}

OwnedHandle OpenFileForReading(const std::string& path) {
    Record("OpenFileForReading " + path);
    const Fake::File* file = FindFile(path);
    fileIsOpen = file != nullptr && file->canBeOpened;
    unread = fileIsOpen ? file->content : "";
    return fileIsOpen ? OwnedHandle(openFileHandle) : OwnedHandle();
}

std::size_t ReadFile(const OwnedHandle& file, char* buffer, std::size_t size) {
    Record("ReadFile " + std::to_string(size));
    if (file.Get() != openFileHandle || !fileIsOpen)
        return 0;
    const std::size_t count = CopyOut(unread, buffer, size);
    unread.erase(0, count);
    return count;
}

std::string ReadTextFile(const std::string& path) {
    Record("ReadTextFile " + path);
    const Fake::File* file = FindFile(path);
    return file == nullptr || !file->canBeOpened ? "" : file->content;
}

// Sockets

struct AddressInfo {
    std::string host;
    std::string port;
};

int StartSockets() {
    Record("StartSockets");
    return TheWorld().startSucceeds(TheWorld().attempts++) ? 0 : 1;
}

int CleanupSockets() {
    Record("CleanupSockets");
    return 0;
}

std::uint64_t MostOpenFiles() {
    return TheWorld().mostOpenFiles;
}

std::uint64_t MostPorts() {
    return TheWorld().mostPorts;
}

AddressInfo* ResolveAddress(const std::string& host, const std::string& port) {
    Record("ResolveAddress [" + host + "] [" + port + "]");
    return TheWorld().resolveSucceeds(TheWorld().attempts - 1) ? new AddressInfo{host, port}
                                                               : nullptr;
}

void FreeAddress(AddressInfo* addresses) {
    Record("FreeAddress");
    delete addresses;
}

SocketHandle CreateSocket(const AddressInfo*) {
    Record("CreateSocket");
    return TheWorld().createSucceeds(TheWorld().attempts - 1) ? TheWorld().nextSocket++
                                                              : InvalidSocket;
}

int AllowAddressReuse(SocketHandle socket) {
    Record("AllowAddressReuse " + std::to_string(socket));
    return TheWorld().reuseSucceeds(TheWorld().attempts - 1) ? 0 : SocketError;
}

int ConnectSocket(SocketHandle socket, const AddressInfo*) {
    Record("ConnectSocket " + std::to_string(socket));
    return TheWorld().connectSucceeds(TheWorld().attempts - 1) ? 0 : SocketError;
}

int SendSocket(SocketHandle socket, const char* data, std::size_t size) {
    Record("send " + std::to_string(socket) + " " + std::to_string(size));
    if (TheWorld().sends++ == TheWorld().failingSend)
        return SocketError;
    const int limit = TheWorld().largestSend;
    const std::size_t taken = limit < 0 ? size : std::min(size, static_cast<std::size_t>(limit));
    TheWorld().sent.append(data, taken);
    return static_cast<int>(taken);
}

int ReceiveSocket(SocketHandle socket, char* buffer, std::size_t size) {
    Record("recv " + std::to_string(socket) + " " + std::to_string(size));
    TheWorld().onReceive();
    auto& pieces = TheWorld().received;
    if (pieces.empty())
        return TheWorld().receiveFailsAtEnd ? SocketError : 0;
    const std::size_t count = CopyOut(pieces.front(), buffer, size);
    pieces.front().erase(0, count);
    if (pieces.front().empty())
        pieces.pop_front();
    return static_cast<int>(count);
}

int CloseSocket(SocketHandle socket) {
    Record("CloseSocket " + (socket == InvalidSocket ? "invalid" : std::to_string(socket)));
    return 0;
}

std::string LastSocketErrorText() {
    Record("LastSocketErrorText");
    return "the peer has gone";
}

// Debugger output and locks

void OutputDebugStringA(const char* message) noexcept {
    TheWorld().debugOutput.emplace_back(message);
}

struct CriticalSection {};

CriticalSection* CreateCriticalSection() noexcept {
    if (!TheWorld().criticalSectionsCanBeCreated)
        return nullptr;
    ++TheWorld().criticalSections;
    return new CriticalSection;
}

void DestroyCriticalSection(CriticalSection* section) noexcept {
    --TheWorld().criticalSections;
    delete section;
}

void EnterCriticalSection(CriticalSection*) noexcept {
    Record("EnterCriticalSection");
}

void LeaveCriticalSection(CriticalSection*) noexcept {
    Record("LeaveCriticalSection");
}

// A unit test starts no process; one that tries to hears so.

struct ChildProcess::System {};

ChildProcess::ChildProcess(const ChildStart& start) {
    throw std::system_error(std::make_error_code(std::errc::operation_not_permitted),
                            start.program);
}

ChildProcess::~ChildProcess() = default;

void ChildProcess::Kill() {}

ChildEnd ChildProcess::Wait() {
    return {};
}

std::uint64_t ChildProcess::Id() const {
    return ProcessId();
}

struct InterruptionListener::System {};

InterruptionListener::InterruptionListener(Function /*function*/) {}

InterruptionListener::~InterruptionListener() = default;

} // namespace OSAL
