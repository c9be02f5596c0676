#include "platform/Transaction.h"

#include "platform/Database.h"

namespace Store {

bool inTransaction(Database &db, const std::function<void()> &change, const AskAgain &ask)
{
    for (;;) {
        try {
            db.beginTrans();
            change();
            db.commitTrans();
            return true;
        } catch (const StoreError &e) {
            db.rollback();
            if (!ask(e))
                return false;
        }
    }
}

}  // namespace Store
