#include "base/AttachmentBag.h"

#include "base/Log.h"

namespace Orvane {

int AttachmentBag::_nextID = 0;

AttachmentBag::~AttachmentBag()
{
    // An attachment's shutdown may ask this bag for an attachment, which makes a fresh map:
    // repeat until none is left so that it does not leak.
    while (_attachments)
        delAllAttachment();
}

AttachmentBag::AttachmentMap& AttachmentBag::attMap()
{
    if (!_attachments)
        _attachments = new AttachmentMap;
    return *_attachments;
}

void AttachmentBag::setAttachment(int id, RefCountObject* object)
{
    if (!object) {
        ORV_FATAL("Can not add NULL attachemnt for %d id", id);
        return;
    }
    attMap()[id] = object;
}

RefCountObject* AttachmentBag::getAttachment(int id)
{
    auto& map = attMap();
    auto found = map.find(id);
    return found == map.end() ? nullptr : found->second.get();
}

void AttachmentBag::delAttachment(int id)
{
    if (_attachments)
        _attachments->erase(id);
}

void AttachmentBag::delAllAttachment()
{
    // Detach the map first: an attachment's shutdown may look at this object again.
    delete std::exchange(_attachments, nullptr);
}

unsigned int AttachmentBag::getAttachmentCount() const
{
    return _attachments ? static_cast<unsigned int>(_attachments->size()) : 0u;
}

} // namespace Orvane
