#include "generate/common/commongeneratorhelper.h"

#include "generate/base/dialect.h"
#include "store/objectdatabase.h"

CommonGeneratorHelper::CommonGeneratorHelper(const std::shared_ptr<ObjectDataBase> &store)
    : CommonGeneratorHelper(store, Dialect::classic())
{
}

CommonGeneratorHelper::CommonGeneratorHelper(const std::shared_ptr<ObjectDataBase> &store, const Dialect &dialect)
    : dialect_(dialect)
    , init_(CommonInit::collect(*store))
    , uds_(UdsBlocks::collect(*store))
{
}

CommonGeneratorHelperV4::CommonGeneratorHelperV4(const std::shared_ptr<ObjectDataBase> &store)
    : CommonGeneratorHelper(store, Dialect::v4())
{
}

void CommonGeneratorHelper::writeCommonInit(CodeWriter &out) const
{
    ::writeCommonInit(out, init_, dialect_);
}

void CommonGeneratorHelper::writeUdsBlocks(CodeWriter &out) const
{
    if (uds_)
        ::writeUdsBlocks(out, *uds_, dialect_);
}

void CommonGeneratorHelper::writeUdsInitCalls(CodeWriter &out) const
{
    if (uds_)
        ::writeUdsInitCalls(out, *uds_);
}
