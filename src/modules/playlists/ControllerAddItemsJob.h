#pragma once

#include "Controller.h"
#include "ItemsCheck.h"

// The last part of one request to add items by their paths, once other modules have prepared them:
// checks the items, a great many between other requests, adds them and answers. Deletes itself
// then. Child of the controller; when that goes first, the caller gets the platform's error for a
// request that was not answered.
class Controller::AddItemsJob : public QObject {
public:
    AddItemsJob(Controller* controller, const ReqGroupProperties& props,
                const QList<OrvoPlayListItem>& items);

    // A few items are added, and the request answered, before this returns.
    void start() { checkSlice(); }

private:
    void checkSlice();
    void finish();
    bool isComplete() const;
    bool succeed(const AddedItems& added, QString& msg);

    Controller* m_controller;
    const ReqGroupProperties m_props;
    ItemsCheck m_check;
    bool m_areMany = false;
};
