#include "tests/tdsserver/faults.h"

#include "tests/tdsserver/packets.h"

#include <algorithm>

namespace selfreport::tds {

void FaultPlan::order(Fault fault)
{
    const std::lock_guard lock(m_mutex);
    m_faults.push_back(std::move(fault));
}

std::optional<Fault> FaultPlan::take(Step step)
{
    const std::lock_guard lock(m_mutex);
    const auto found = std::ranges::find(m_faults, step, &Fault::step);
    if (found == m_faults.end())
        return std::nullopt;
    std::optional<Fault> taken = std::move(*found);
    m_faults.erase(found);
    return taken;
}

void FaultPlan::clear()
{
    const std::lock_guard lock(m_mutex);
    m_faults.clear();
}

std::string cutReply(const std::string& framed, const Reply& reply, Cut cut)
{
    switch (cut) {
    case Cut::none:
        return framed;
    case Cut::beforeReply:
        return {};
    case Cut::inHeader:
        return framed.substr(0, packetHeaderSize / 2);
    case Cut::insideToken:
        return framed.substr(0, packetHeaderSize + reply.tokens.front().size() / 2);
    case Cut::lastByteMissing:
        break;
    }
    return framed.substr(0, framed.size() - 1);
}

} // namespace selfreport::tds
