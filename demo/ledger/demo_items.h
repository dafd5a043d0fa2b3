#pragma once
#include "demo/ledger/DemoRandom.h"
#include "demo/ledger/LedgerBook.h"

#include <string>
#include <vector>

namespace selfreport::demo {

struct DemoItem {
    int id = 0; ///< unique over all classes
    std::string code, name;
};

struct DemoCustomer : DemoItem {
    int detail = 0;     ///< combination of the customer and the department that serves it
    int department = 0; ///< place in DemoItems::departments
    bool paysInDollars = false;
};

struct DemoSupplier : DemoItem {
    int detail = 0;
};

struct DemoGoods : DemoItem {
    int detail = 0;
    Fen cost = 0;  ///< of one piece, fixed
    Fen price = 0; ///< of one piece without tax
};

struct DemoDepartment : DemoItem {
    int detail = 0;
    bool sells = false;
    int staff = 1;
};

/// One item combination: up to two items.
struct DemoCombination {
    int detail = 0;
    std::vector<std::pair<int, int>> items; ///< class id, item id
};

inline constexpr int customerClass = 1;
inline constexpr int supplierClass = 2;
inline constexpr int goodsClass = 3;
inline constexpr int departmentClass = 4;

struct DemoItems {
    std::vector<DemoDepartment> departments;
    std::vector<DemoCustomer> customers;
    std::vector<DemoSupplier> suppliers;
    std::vector<DemoGoods> goods;
    std::vector<DemoCombination> combinations;
};

/// @param departments  how many, at least 8; the others at least 1
DemoItems makeDemoItems(DemoRandom& random, int departments, int customers, int suppliers, int goods);

} // namespace selfreport::demo
