#ifndef ORVANE_BASE_ATTACHMENTBAG_H
#define ORVANE_BASE_ATTACHMENTBAG_H

#include "base/RefCountObject.h"
#include "base/SmartPtr.h"

#include <map>

namespace Orvane {

// Reference-counted attachments under int keys, so that subsystems can hang their own data
// on an object without it knowing their types. Keys come from createUniqueID().
class ORVANE_API AttachmentBag : public RefCountObject {
public:
    using AttachmentMap = std::map<int, SmartPtr<RefCountObject>>;

    void            setAttachment(int id, RefCountObject* object);
    RefCountObject* getAttachment(int id);
    void            delAttachment(int id);
    void            delAllAttachment();
    unsigned int    getAttachmentCount() const;

    static int createUniqueID() { return _nextID++; }

protected:
    AttachmentBag() = default;
    ~AttachmentBag() override;

    AttachmentMap& attMap();

private:
    AttachmentMap* _attachments = nullptr;
    static int     _nextID;
};

} // namespace Orvane

#endif
