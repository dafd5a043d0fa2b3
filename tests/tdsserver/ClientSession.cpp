#include "tests/tdsserver/ClientSession.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace selfreport::tds {

namespace {

// Kinds of environment changes.
constexpr std::uint8_t databaseChanged = 1;
constexpr std::uint8_t languageChanged = 2;
constexpr std::uint8_t packetSizeChanged = 4;
constexpr std::uint8_t transactionBegun = 8;
constexpr std::uint8_t transactionCommitted = 9;
constexpr std::uint8_t transactionRolledBack = 10;

std::string textOf(const Parameter& parameter)
{
    const auto* text = std::get_if<std::string>(&parameter.value);
    return text ? *text : std::string();
}

std::int32_t handleOf(const Parameter& parameter)
{
    const auto* handle = std::get_if<std::int64_t>(&parameter.value);
    return handle ? static_cast<std::int32_t>(*handle) : -1;
}

/// Values without names belong to "@P1", "@P2", ... of the statement.
std::vector<Parameter> named(std::span<const Parameter> parameters)
{
    std::vector<Parameter> all(parameters.begin(), parameters.end());
    for (std::size_t at = 0; at < all.size(); ++at)
        if (all[at].name.empty())
            all[at].name = "@P" + std::to_string(at + 1);
    return all;
}

std::string descriptorOf(std::uint64_t transaction)
{
    std::string descriptor;
    put(descriptor, transaction);
    return descriptor;
}

} // namespace

ClientSession::ClientSession(TdsServer& server, Socket socket, int number)
    : m_server(server)
    , m_socket(std::move(socket))
    , m_number(number)
{
}

void ClientSession::drop()
{
    m_socket.stop();
}

void ClientSession::serve()
{
    MessageReader reader(m_socket);
    try {
        while (const auto message = reader.next()) {
            auto answered = answer(*message);
            if (answered && !deliver(std::move(*answered)))
                break;
        }
    } catch (const std::exception&) {
        // The client broke the protocol: it is served no longer.
    }
    m_ledger.reset(); // rolls back
    m_socket.stop();
}

std::optional<ClientSession::Answer> ClientSession::answer(const Message& message)
{
    try {
        switch (message.type) {
        case PacketType::preLogin: {
            Answer greeted{Step::preLogin, {}};
            greeted.reply.tokens.push_back(preLoginReply());
            return greeted;
        }
        case PacketType::login:
            return answerLogin(message);
        case PacketType::batch:
            return answerBatch(message);
        case PacketType::procedure:
            return answerProcedure(message);
        case PacketType::transaction:
            return answerTransaction(message);
        case PacketType::attention: {
            m_server.journal.add({m_number, Step::attention, "", {}});
            Answer stopped{Step::attention, {}};
            stopped.reply.attentionDone();
            return stopped;
        }
        case PacketType::reply:
            break;
        }
    } catch (const Interrupted&) {
        return std::nullopt; // the attention that interrupted is answered next
    }
    throw ProtocolError("message of an unknown type");
}

ClientSession::Answer ClientSession::answerLogin(const Message& message)
{
    const Login login = readLogin(message.body);
    m_server.journal.add(login);
    Answer answer{Step::login, {}};
    Reply& reply = answer.reply;
    const bool isKnown = login.user == TdsServer::user && login.password == TdsServer::password;
    const bool isHere = login.database == "cw";
    if (isKnown && !isHere)
        reply.error(4060, "无法打开登录所请求的数据库 \"" + login.database + "\"。登录失败。");
    if (!isKnown || !isHere)
        reply.error(18456, "用户 '" + login.user + "' 登录失败。");
    if (isKnown && isHere) {
        m_packetSize = std::clamp<std::size_t>(login.packetSize, 512, 32767);
        reply.environment(databaseChanged, login.database, "master");
        reply.info(5701, "已将数据库上下文更改为 '" + login.database + "'。");
        reply.collation();
        reply.environment(languageChanged, "简体中文", "");
        reply.loginAcknowledged();
        reply.environment(packetSizeChanged, std::to_string(m_packetSize), "4096");
        m_ledger.emplace(
            m_server.m_file, [this] { return m_socket.hasInput(); }, m_server.codePage);
    }
    reply.done(Reply::Done::statement, -1, !m_ledger);
    reply.finish();
    return answer;
}

Ledger& ClientSession::ledger()
{
    if (!m_ledger)
        throw ProtocolError("request before the login");
    return *m_ledger;
}

ClientSession::Answer ClientSession::answerBatch(const Message& message)
{
    Answer answer{Step::batch, {}};
    const std::string text = readBatch(message.body);
    m_server.journal.add({m_number, answer.step, text, {}});
    BatchRunner(ledger(), answer.reply, Reply::Done::statement, m_countsRows).run(text);
    answer.reply.finish();
    return answer;
}

ClientSession::Answer ClientSession::answerProcedure(const Message& message)
{
    const ProcedureRequest request = readProcedure(message.body);
    const bool isSystem = request.system != SystemProcedure::none;
    Answer answer{isSystem ? Step::statement : Step::procedure, {}};
    const bool isStatement = request.system == SystemProcedure::executeSql && !request.parameters.empty();
    m_server.journal.add({m_number, answer.step,
                          isStatement ? textOf(request.parameters.front()) : request.name,
                          request.parameters});
    if (isSystem)
        runSystemProcedure(request, answer.reply);
    else
        callProcedure(request, answer.reply);
    answer.reply.finish();
    return answer;
}

void ClientSession::callProcedure(const ProcedureRequest& request, Reply& reply)
{
    try {
        const Ledger::Called called = ledger().call(request.name, request.parameters);
        if (called.rows) {
            reply.rows(*called.rows);
            reply.done(Reply::Done::inProcedure, static_cast<std::int64_t>(called.rows->rows.size()));
        }
        reply.returnStatus(called.returned);
        reply.done(Reply::Done::procedure);
    } catch (const ServerError& error) {
        reply.error(error.number, error.text);
        reply.done(Reply::Done::procedure, -1, true);
    }
}

void ClientSession::runStatement(const std::string& sql, std::span<const Parameter> parameters, Reply& reply)
{
    bool countsRows = m_countsRows; // what a statement sets inside a procedure ends with it
    BatchRunner runner(ledger(), reply, Reply::Done::inProcedure, countsRows);
    for (Parameter& parameter : named(parameters))
        runner.declare(std::move(parameter));
    runner.run(sql);
    reply.returnStatus(0);
}

/// Before the values stand a statement's handle, the declaration of its parameters and its text.
void ClientSession::runSystemProcedure(const ProcedureRequest& request, Reply& reply)
{
    const std::span<const Parameter> all(request.parameters);
    const auto parameter = [&](std::size_t at) -> const Parameter& {
        if (at >= all.size())
            throw ProtocolError("parameters are missing");
        return all[at];
    };
    const auto valuesFrom = [&](std::size_t at) { return all.subspan(std::min(at, all.size())); };
    const auto keep = [&] {
        const auto handle = static_cast<std::int32_t>(m_prepared.size()) + 1;
        m_prepared[handle] = textOf(parameter(2));
        return handle;
    };
    switch (request.system) {
    case SystemProcedure::executeSql:
        runStatement(textOf(parameter(0)), valuesFrom(2), reply);
        break;
    case SystemProcedure::prepareAndExecute: {
        const std::int32_t handle = keep();
        runStatement(m_prepared[handle], valuesFrom(3), reply);
        reply.returnInteger(handle);
        break;
    }
    case SystemProcedure::prepare:
        reply.returnInteger(keep());
        break;
    case SystemProcedure::execute:
        runStatement(m_prepared[handleOf(parameter(0))], valuesFrom(1), reply);
        break;
    case SystemProcedure::unprepare:
        break; // handles are not used again
    default:
        reply.error(2812, "找不到存储过程。");
    }
    reply.done(Reply::Done::procedure);
}

void ClientSession::beginTransaction(Reply& reply)
{
    ledger().begin();
    reply.transaction(transactionBegun, descriptorOf(++m_transactions), "");
}

ClientSession::Answer ClientSession::answerTransaction(const Message& message)
{
    const TransactionRequest request = readTransaction(message.body);
    using Kind = TransactionRequest::Kind;
    Answer answer{request.kind == Kind::begin    ? Step::begin
                  : request.kind == Kind::commit ? Step::commit
                                                 : Step::rollBack,
                  {}};
    m_server.journal.add({m_number, answer.step, "", {}});
    bool hasFailed = false;
    try {
        if (request.kind == Kind::commit)
            ledger().commit();
        else if (request.kind == Kind::rollBack)
            ledger().rollBack();
    } catch (const ServerError& error) {
        answer.reply.error(error.number, error.text);
        hasFailed = true;
    }
    if (request.kind != Kind::begin && !hasFailed)
        answer.reply.transaction(request.kind == Kind::commit ? transactionCommitted : transactionRolledBack,
                                 "", descriptorOf(m_transactions));
    if (request.kind == Kind::begin || (request.beginsNext && !hasFailed))
        beginTransaction(answer.reply);
    answer.reply.done(Reply::Done::statement, -1, hasFailed);
    answer.reply.finish();
    return answer;
}

bool ClientSession::deliver(Answer answer)
{
    std::optional<Fault> fault = m_server.faults.take(answer.step);
    if (fault && fault->disorder)
        fault->disorder(answer.reply);
    const std::string body = answer.reply.body();
    std::string framed = framedReply(body, m_packetSize);
    if (const auto delay = m_server.replyDelay.load(); delay.count() > 0)
        std::this_thread::sleep_for(delay);
    if (!fault || (fault->cut == Cut::none && fault->garbage.empty()))
        return m_socket.send(framed);
    m_socket.send(fault->garbage.empty() ? cutReply(framed, answer.reply, fault->cut) : fault->garbage);
    return endAfterCut(fault->ending);
}

bool ClientSession::endAfterCut(Ending ending)
{
    if (ending == Ending::held)
        return true;
    if (ending == Ending::reset)
        m_socket.reset();
    if (ending == Ending::silent) {
        std::array<char, 4096> unread;
        while (m_socket.receive(unread.data(), unread.size()) > 0) {
        }
    }
    return false;
}

} // namespace selfreport::tds
