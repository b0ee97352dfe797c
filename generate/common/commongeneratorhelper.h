#pragma once

#include "generate/common/commoninit.h"
#include "generate/common/udsblocks.h"

#include <memory>

class CodeWriter;
class ObjectDataBase;
struct Dialect;

/// The text that gen_objdict.c and gen_mp.c share: the common structures of the start-up, in the classic form.
class CommonGeneratorHelper
{
public:
    explicit CommonGeneratorHelper(const std::shared_ptr<ObjectDataBase> &store);
    CommonGeneratorHelper(const std::shared_ptr<ObjectDataBase> &store, const Dialect &dialect);

    /// `commonInitVars`.
    void writeCommonInit(CodeWriter &out) const;
    /// The tables and structures of the diagnostic part; nothing where that is not part of the project.
    void writeUdsBlocks(CodeWriter &out) const;
    /// The calls that start the diagnostic part, within a function that has a variable `retVal`; nothing likewise.
    void writeUdsInitCalls(CodeWriter &out) const;

    bool hasUds() const { return uds_.has_value(); }

private:
    const Dialect &dialect_;
    CommonInit init_;
    std::optional<UdsBlocks> uds_;
};

/// The same in the V4 form.
class CommonGeneratorHelperV4 : public CommonGeneratorHelper
{
public:
    explicit CommonGeneratorHelperV4(const std::shared_ptr<ObjectDataBase> &store);
};
