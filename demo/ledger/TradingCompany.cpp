#include "demo/ledger/TradingCompany.h"

#include "demo/ledger/voucher_draft.h"

#include <algorithm>
#include <array>

namespace selfreport::demo {

// Vouchers follow from each other as in a real trading company: goods are bought before they are sold, paid
// after they are invoiced, and the month is closed by carrying revenues and costs over. So the books balance
// by construction, and the check figures that stand in the demo reports can be worked out another way.

namespace {

template <typename Item>
const Item& oneOf(DemoRandom& random, const std::vector<Item>& items)
{
    return items[static_cast<std::size_t>(random.between(0, static_cast<std::int64_t>(items.size()) - 1))];
}

} // namespace

TradingCompany::TradingCompany(LedgerBook& book, const DemoItems& items, DemoRandom& random,
                               int salesPerPeriod)
    : m_book(book)
    , m_items(items)
    , m_random(random)
    , m_salesPerPeriod(salesPerPeriod)
{
}

void TradingCompany::openDebit(std::string_view code, Fen amount, int detail, std::int64_t quantity)
{
    VoucherEntry entry;
    entry.account = m_book.idOf(code);
    entry.detail = detail;
    entry.debitFor = entry.debit = amount;
    entry.debitQuantity = quantity;
    m_book.open(entry);
}

void TradingCompany::openCredit(std::string_view code, Fen amount, int detail)
{
    openDebit(code, -amount, detail);
}

void TradingCompany::openBooks()
{
    openMoney();
    openTrade();
    openAssets();
    openCapital();
}

void TradingCompany::openMoney()
{
    openDebit("100101", m_random.between(20000, 60000) * yuan);
    openDebit("10020101", m_random.between(3000000, 5000000) * yuan + m_salesPerPeriod * 30000 * yuan);
    openDebit("10020102", m_random.between(200000, 600000) * yuan);
    openDebit("10020201", m_random.between(200000, 600000) * yuan);
    openDebit("10020301", m_random.between(100000, 300000) * yuan);
    VoucherEntry entry;
    entry.currency = dollars;
    entry.account = m_book.idOf("10020202");
    entry.debitFor = m_random.between(500000, 900000) * 10;
    entry.debit = entry.debitFor * dollarRate / 100;
    m_book.open(entry);
    entry.account = m_book.idOf("100102");
    entry.debitFor = 100000;
    entry.debit = entry.debitFor * dollarRate / 100;
    m_book.open(entry);
    openDebit("101204", 150000 * yuan);
    openDebit("122101", m_random.between(10000, 40000) * yuan);
    openDebit("122102", 60000 * yuan);
}

void TradingCompany::openTrade()
{
    for (const DemoCustomer& customer : m_items.customers) {
        VoucherEntry entry;
        entry.account = m_book.idOf("1122");
        entry.detail = customer.detail;
        entry.currency = customer.paysInDollars ? dollars : baseCurrency;
        entry.debitFor = m_random.between(5000, 300000) * 10 * 10;
        entry.debit = customer.paysInDollars ? entry.debitFor * dollarRate / 100 : entry.debitFor;
        m_book.open(entry);
        if (customer.paysInDollars)
            continue;
        openCredit("2203", m_random.between(1000, 20000) * yuan, customer.detail);
        openDebit("1121", m_random.between(2000, 60000) * yuan, customer.detail);
    }
    for (const DemoSupplier& supplier : m_items.suppliers) {
        openCredit("2202", m_random.between(5000, 200000) * yuan, supplier.detail);
        openCredit("2201", m_random.between(2000, 40000) * yuan, supplier.detail);
        openDebit("1123", m_random.between(1000, 20000) * yuan, supplier.detail);
    }
    for (const DemoGoods& goods : m_items.goods) {
        const std::int64_t pieces = m_random.between(100, 600);
        openDebit("1405", pieces * goods.cost, goods.detail, pieces);
        const std::int64_t sent = m_random.between(1, 20);
        openDebit("1406", sent * goods.cost, goods.detail, sent);
    }
}

void TradingCompany::openAssets()
{
    struct Row {
        const char* code;
        Fen value;
    };
    static constexpr Row assets[] = {
        {"160101", 6000000 * yuan}, {"160102", 300000 * yuan}, {"160103", 900000 * yuan},
        {"160104", 480000 * yuan},  {"160105", 120000 * yuan}, {"170101", 2400000 * yuan},
        {"170102", 180000 * yuan},  {"1801", 240000 * yuan},   {"1511", 500000 * yuan},
    };
    static constexpr Row written[] = {
        {"1231", 40000 * yuan},    {"160201", 1200000 * yuan}, {"160202", 90000 * yuan},
        {"160203", 300000 * yuan}, {"160204", 200000 * yuan},  {"160205", 40000 * yuan},
        {"170201", 240000 * yuan}, {"170202", 60000 * yuan},   {"200101", 2000000 * yuan},
        {"200102", 800000 * yuan}, {"2231", 12600 * yuan},     {"221101", 420000 * yuan},
        {"222102", 90000 * yuan},  {"222103", 160000 * yuan},  {"224101", 50000 * yuan},
        {"2501", 1500000 * yuan},
    };
    for (const Row& row : assets)
        openDebit(row.code, row.value);
    for (const Row& row : written)
        openCredit(row.code, row.value);
}

/// What the owners have is what is left.
void TradingCompany::openCapital()
{
    Fen left = 0;
    for (const BookAccount& account : m_book.accounts())
        if (account.level == 1)
            left += m_book.balanceOf(account.id);
    const Fen legal = left / 2 / yuan * yuan;
    const Fen personal = left / 5 / yuan * yuan;
    const Fen reserve = left / 20 / yuan * yuan;
    openCredit("400101", legal);
    openCredit("400102", personal);
    openCredit("410101", reserve);
    openCredit("410403", left - legal - personal - reserve);
}

void TradingCompany::keepPeriod(int period)
{
    m_period = period;
    gatherMoney();
    for (int sale = 0; sale < m_salesPerPeriod; ++sale)
        sell();
    for (int turn = 0; turn < m_salesPerPeriod / 2; ++turn) {
        collect();
        if (turn % 2 == 0)
            payDebt();
    }
    spend();
    payWages();
    writeOff();
    payInterest();
    settleTaxes();
    takeIncomeTax();
    carryOver();
    if (period % periodsPerYear == periodsPerYear - 1)
        closeYear();
}

void TradingCompany::purchase(const DemoGoods& goods)
{
    const DemoSupplier& supplier = oneOf(m_random, m_items.suppliers);
    const std::int64_t pieces = m_random.between(100, 400);
    const Fen value = pieces * goods.cost;
    const Fen tax = value * 13 / 100;
    Draft(*this, static_cast<int>(m_random.between(1, 25)), "采购商品")
        .debit("1405", value, goods.detail, pieces)
        .debit("22210101", tax)
        .credit("2202", value + tax, supplier.detail)
        .post();
}

void TradingCompany::sell()
{
    const DemoCustomer& customer = oneOf(m_random, m_items.customers);
    const DemoGoods& goods = oneOf(m_random, m_items.goods);
    std::int64_t pieces = m_random.between(5, 80);
    const LedgerLine* stock = m_book.line(m_book.idOf("1405"), goods.detail, baseCurrency);
    if (!stock || stock->quantity < pieces)
        purchase(goods);
    const int day = static_cast<int>(m_random.between(1, 28));
    if (customer.paysInDollars) {
        // Exports carry no tax; dollars come in tens of cents.
        const Fen cents = pieces * goods.price * 100 / dollarRate / 10 * 10;
        Draft(*this, day, "出口销售")
            .debitDollars("1122", cents, customer.detail)
            .credit("6001", cents * dollarRate / 100, goods.detail, pieces)
            .post();
    } else {
        const Fen value = pieces * goods.price;
        const Fen tax = value * 13 / 100;
        Draft(*this, day, "销售商品")
            .debit("1122", value + tax, customer.detail)
            .credit("6001", value, goods.detail, pieces)
            .credit("22210104", tax)
            .post();
    }
    Draft(*this, day, "结转销售成本")
        .debit("6401", pieces * goods.cost, goods.detail, pieces)
        .credit("1405", pieces * goods.cost, goods.detail, pieces)
        .post();
}

void TradingCompany::collect()
{
    const DemoCustomer& customer = oneOf(m_random, m_items.customers);
    const int currency = customer.paysInDollars ? dollars : baseCurrency;
    const LedgerLine* owed = m_book.line(m_book.idOf("1122"), customer.detail, currency);
    if (!owed || owed->balanceFor <= 1000)
        return;
    const Fen amount = owed->balanceFor * m_random.between(40, 95) / 100 / 10 * 10;
    const int day = static_cast<int>(m_random.between(1, 28));
    if (customer.paysInDollars)
        Draft(*this, day, "收回货款")
            .debitDollars("10020202", amount)
            .creditDollars("1122", amount, customer.detail)
            .post();
    else if (m_random.oneIn(6))
        Draft(*this, day, "收到票据")
            .debit("1121", amount, customer.detail)
            .credit("1122", amount, customer.detail)
            .post();
    else
        Draft(*this, day, "收回货款")
            .debit(m_random.oneIn(4) ? "10020102" : "10020101", amount)
            .credit("1122", amount, customer.detail)
            .post();
    settlePapers(customer);
}

/// Cashes the customer's notes and sets off what it paid ahead.
void TradingCompany::settlePapers(const DemoCustomer& customer)
{
    if (customer.paysInDollars || !m_random.oneIn(3))
        return;
    const Fen notes = m_book.line(m_book.idOf("1121"), customer.detail, baseCurrency)->balance;
    Draft(*this, lastDay, "票据到期收款")
        .debit("10020101", notes)
        .credit("1121", notes, customer.detail)
        .post();
    const Fen ahead = -m_book.line(m_book.idOf("2203"), customer.detail, baseCurrency)->balance;
    const Fen owed = m_book.line(m_book.idOf("1122"), customer.detail, baseCurrency)->balance;
    const Fen setOff = std::max<Fen>(std::min(ahead, owed) / 2, 0);
    Draft(*this, lastDay, "预收冲应收")
        .debit("2203", setOff, customer.detail)
        .credit("1122", setOff, customer.detail)
        .post();
}

void TradingCompany::payDebt()
{
    const DemoSupplier& supplier = oneOf(m_random, m_items.suppliers);
    const LedgerLine* owed = m_book.line(m_book.idOf("2202"), supplier.detail, baseCurrency);
    if (!owed || owed->balance >= 0)
        return;
    const Fen amount = -owed->balance * m_random.between(50, 100) / 100;
    Draft(*this, static_cast<int>(m_random.between(1, 28)), "支付货款")
        .debit("2202", amount, supplier.detail)
        .credit("10020101", amount)
        .post();
    if (!m_random.oneIn(3))
        return;
    const Fen notes = -m_book.line(m_book.idOf("2201"), supplier.detail, baseCurrency)->balance;
    Draft(*this, lastDay, "承兑票据到期付款")
        .debit("2201", notes, supplier.detail)
        .credit("10020101", notes)
        .post();
}

/// Payments leave from the main account, so what came in elsewhere is brought there.
void TradingCompany::gatherMoney()
{
    const Fen spare = m_book.balanceOf(m_book.idOf("10020102")) - 200000 * yuan;
    if (spare > 0)
        Draft(*this, 1, "划转资金").debit("10020101", spare).credit("10020102", spare).post();
    const LedgerLine* abroad = m_book.line(m_book.idOf("10020202"), 0, dollars);
    const Fen cents = abroad ? (abroad->balanceFor - 100000 * yuan) / 10 * 10 : 0;
    if (cents > 0)
        Draft(*this, 1, "结汇")
            .debit("10020101", cents * dollarRate / 100)
            .creditDollars("10020202", cents)
            .post();
}

void TradingCompany::spend()
{
    static constexpr std::array<const char*, 7> selling{"660104", "660105", "660106", "660107",
                                                        "660110", "660111", "660114"};
    static constexpr std::array<const char*, 9> running{"660205", "660206", "660207", "660211", "660212",
                                                        "660214", "660215", "660216", "660220"};
    for (const DemoDepartment& department : m_items.departments) {
        const auto buy = [&](const char* code) {
            if (m_random.oneIn(4))
                return; // not every month brings every cost
            const Fen amount = m_random.between(30000, 900000);
            Draft(*this, static_cast<int>(m_random.between(2, 27)), "支付费用")
                .debit(code, amount, department.detail)
                .credit(amount < 100000 ? "100101" : "10020101", amount)
                .post();
        };
        if (department.sells)
            std::ranges::for_each(selling, buy);
        else
            std::ranges::for_each(running, buy);
        Draft(*this, 5, "支付房租")
            .debit(department.sells ? "660109" : "660210", 8000 * yuan, department.detail)
            .credit("10020101", 8000 * yuan)
            .post();
    }
    Draft(*this, 6, "提取备用金").debit("100101", 60000 * yuan).credit("10020101", 60000 * yuan).post();
}

} // namespace selfreport::demo
