#include "demo/ledger/demo_items.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace selfreport::demo {

namespace {

constexpr std::array<std::string_view, 16> places{"华东", "华南", "北方", "江南", "东海", "长江",
                                                  "泰山", "滨海", "中原", "西部", "岭南", "天府",
                                                  "关中", "金陵", "临江", "明湖"};
constexpr std::array<std::string_view, 16> words{"恒通", "瑞丰", "宏达", "永兴", "嘉禾", "信和",
                                                 "博远", "联创", "天成", "广源", "正大", "鼎盛",
                                                 "新锐", "众诚", "安泰", "卓越"};
constexpr std::array<std::string_view, 6> trades{"商贸", "实业", "科技", "百货", "电子", "贸易"};
constexpr std::array<std::string_view, 10> wares{"台灯", "插座", "风扇",   "水壶",   "电饭煲",
                                                 "音箱", "键盘", "显示器", "打印纸", "文件柜"};
constexpr std::array<std::string_view, 8> models{"A型",    "B型",    "标准型", "豪华型",
                                                 "便携型", "经济型", "商用型", "家用型"};

std::string numbered(int number, int digits)
{
    const std::string text = std::to_string(number);
    const auto missing = digits - static_cast<int>(text.size());
    return std::string(static_cast<std::size_t>(missing > 0 ? missing : 0), '0') + text;
}

/// Digits of the codes of `count` items: three, more if they do not suffice.
int codeDigits(int count)
{
    return std::max(3, static_cast<int>(std::to_string(count).size()));
}

template <std::size_t N>
std::string_view oneOf(DemoRandom& random, const std::array<std::string_view, N>& choices)
{
    return choices[static_cast<std::size_t>(random.between(0, static_cast<std::int64_t>(N) - 1))];
}

std::string companyName(DemoRandom& random, int number)
{
    std::string name(oneOf(random, places));
    name += oneOf(random, words);
    name += oneOf(random, trades);
    // Names repeat in a big ledger; the branch number keeps them apart.
    return name + "有限公司" + (number > 40 ? std::to_string(number) + "分公司" : "");
}

class Maker {
public:
    explicit Maker(DemoRandom& random)
        : m_random(random)
    {
    }

    DemoItems items;

    void departments(int count)
    {
        struct Row {
            const char* name;
            bool sells;
            int staff;
        };
        static constexpr Row rows[] = {{"销售一部", true, 12}, {"销售二部", true, 10}, {"外贸部", true, 6},
                                       {"市场部", true, 5},    {"行政部", false, 4},   {"财务部", false, 5},
                                       {"采购部", false, 6},   {"仓储部", false, 8}};
        const int digits = std::max(2, static_cast<int>(std::to_string(count).size()));
        for (int number = 1; number <= count; ++number) {
            const bool named = number <= static_cast<int>(std::size(rows));
            const Row& row = rows[named ? number - 1 : number % 2];
            DemoDepartment department;
            department.id = ++m_lastItem;
            department.code = numbered(number, digits);
            department.name = named ? row.name : "第" + std::to_string(number) + "销售部";
            department.sells = row.sells;
            department.staff = row.staff;
            department.detail = combination({{departmentClass, department.id}});
            items.departments.push_back(department);
        }
    }

    void customers(int count)
    {
        for (int number = 1; number <= count; ++number) {
            DemoCustomer customer;
            customer.id = ++m_lastItem;
            customer.code = numbered(number, codeDigits(count));
            customer.name = companyName(m_random, number);
            customer.paysInDollars = number % 10 == 0;
            // The third department trades abroad.
            customer.department = customer.paysInDollars ? 2 : sellingDepartment();
            const auto& department = items.departments[static_cast<std::size_t>(customer.department)];
            customer.detail = combination({{customerClass, customer.id}, {departmentClass, department.id}});
            items.customers.push_back(customer);
        }
    }

    void suppliers(int count)
    {
        for (int number = 1; number <= count; ++number) {
            DemoSupplier supplier;
            supplier.id = ++m_lastItem;
            supplier.code = numbered(number, codeDigits(count));
            supplier.name = companyName(m_random, number);
            supplier.detail = combination({{supplierClass, supplier.id}});
            items.suppliers.push_back(supplier);
        }
    }

    void goods(int count)
    {
        for (int number = 1; number <= count; ++number) {
            DemoGoods goods;
            goods.id = ++m_lastItem;
            goods.code = numbered(number, codeDigits(count));
            goods.name = std::string(oneOf(m_random, wares)) + std::string(oneOf(m_random, models)) +
                         numbered(number, codeDigits(count));
            goods.cost = m_random.between(1000, 90000);
            goods.price = goods.cost * m_random.between(125, 160) / 100;
            goods.detail = combination({{goodsClass, goods.id}});
            items.goods.push_back(goods);
        }
    }

private:
    int sellingDepartment()
    {
        const auto department = static_cast<std::size_t>(
            m_random.between(0, static_cast<std::int64_t>(items.departments.size()) - 1));
        return items.departments[department].sells ? static_cast<int>(department)
                                                   : static_cast<int>(department % 2);
    }

    int combination(std::vector<std::pair<int, int>> members)
    {
        const int detail = static_cast<int>(items.combinations.size()) + 1;
        items.combinations.push_back({detail, std::move(members)});
        return detail;
    }

    DemoRandom& m_random;
    int m_lastItem = 1000; // ids below are left to what a host adds by hand
};

} // namespace

DemoItems makeDemoItems(DemoRandom& random, int departments, int customers, int suppliers, int goods)
{
    Maker maker(random);
    maker.departments(departments);
    maker.customers(customers);
    maker.suppliers(suppliers);
    maker.goods(goods);
    return std::move(maker.items);
}

} // namespace selfreport::demo
