// What the cases of the store cannot say of the object dictionary.

#include "store/storetest.h"

#include "store/records/metadatablob.h"

using namespace Qt::StringLiterals;

namespace {

using Objects = StoreTest;

TEST_F(Objects, BatchGoesOnAfterAFailure)
{
    const ObjectDataBase::SUBINDEX_DATA_T broken = {.varname = u"'"_s};
    store.keepSubIndices(true);
    EXPECT_TRUE(store.getAllSubIndices(0).isEmpty());
    EXPECT_TRUE(store.addSubIndices({{0, 0x2000, 0, {}}, {0, 0x2000, 1, broken}, {0, 0x2000, 2, {}}}));
    EXPECT_FALSE(store.addSubIndices({{0, 0x2000, 3, {}}, {0, 0x2000, 4, broken}}));
    EXPECT_EQ(store.getSubIndexList(0, 0x2000), (QList<quint8>{0, 2, 3}));
    EXPECT_TRUE(store.setSubObjectMetadata(0, 0x2000, 3, {{u"a"_s, u"b"_s}}));
    ASSERT_EQ(store.getAllSubIndices(0).size(), 3);
    EXPECT_EQ(store.getAllSubIndices(0).last().data.metadata.value(u"a"_s), u"b"_s);
    EXPECT_TRUE(store.addNode(1, {}) && store.getAllSubIndices(1).isEmpty());
    EXPECT_TRUE(store.addSubIndex(0, 0x2000, 5, {}) && store.getAllSubIndices(1).isEmpty());
}

TEST_F(Objects, CopyBetweenProjects)
{
    EXPECT_TRUE(store.addIndex(0, 0x2000, {.name = u"Source"_s}));
    EXPECT_TRUE(store.addSubIndices({{0, 0x2000, 0, {}}, {0, 0x2000, 1, {}}}));
    ObjectDataBase target;
    EXPECT_TRUE(target.createNewDataBase());
    EXPECT_TRUE(target.addIndex(0, 0x2100, {}));
    EXPECT_TRUE(target.addSubIndex(0, 0x2100, 9, {}));
    EXPECT_FALSE(target.copyIndexFrom(nullptr, 0, 0x2000, 0, 0x2100));
    EXPECT_FALSE(target.copyIndexFrom(&store, 0, 0x2fff, 0, 0x2100));
    EXPECT_TRUE(target.copyIndexFrom(&store, 0, 0x2000, 0, 0x2100));
    EXPECT_EQ(target.getSubIndexList(0, 0x2100), (QList<quint8>{0, 1}));
    EXPECT_EQ(target.getIndexName(0, 0x2100), u"Source"_s);
    EXPECT_TRUE(target.copyIndexFrom(&store, 0, 0x2000, 0, 0x2200, true));
    EXPECT_TRUE(target.getSubIndexList(0, 0x2200).isEmpty());
}

TEST(Metadata, AnythingElseThanAMapIsEmpty)
{
    const ObjectDataBase::Metadata map = {{u"a"_s, u"1"_s}, {u"b"_s, u"ü"_s}};
    const QByteArray bytes = MetadataBlob::serialise(map);
    EXPECT_EQ(bytes.left(8), QByteArray("\0\0\0\2\0\0\0\2", 8));
    EXPECT_EQ(MetadataBlob::parse(bytes), map);
    for (const QByteArray &bad : {QByteArray(), QByteArray("0"), QByteArray("garbage!"), bytes.left(bytes.size() - 1),
                                  QByteArray("\xff\xff\xff\xf0\0\0\0\2", 8)})
        EXPECT_TRUE(MetadataBlob::parse(bad).isEmpty());
}

} // namespace
