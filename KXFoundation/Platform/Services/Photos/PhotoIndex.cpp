// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Services/Photos/PhotoIndex.h>

namespace kx {

namespace {

using Row = SqliteDatabase::Row;

constexpr std::int64_t kVersion = 1;
constexpr const char* kSchema =
    "BEGIN IMMEDIATE;"
    "CREATE TABLE album (id INTEGER PRIMARY KEY AUTOINCREMENT, identifier TEXT NOT NULL UNIQUE,"
    " title TEXT NOT NULL, folder TEXT NOT NULL UNIQUE);"
    "CREATE TABLE asset (id INTEGER PRIMARY KEY AUTOINCREMENT, identifier TEXT NOT NULL UNIQUE,"
    " type INTEGER NOT NULL, folder TEXT NOT NULL, name TEXT NOT NULL, incoming TEXT NOT NULL,"
    " UNIQUE (folder, name));"
    "CREATE TABLE member (album INTEGER NOT NULL REFERENCES album, asset INTEGER NOT NULL REFERENCES asset,"
    " PRIMARY KEY (album, asset)) WITHOUT ROWID;"
    "CREATE TABLE intent (folder TEXT NOT NULL, name TEXT NOT NULL);"
    "PRAGMA user_version = 1;"
    "COMMIT;";

std::vector<std::string> firstColumn(std::vector<Row> rows) {
    std::vector<std::string> texts;
    for (Row& row : rows) texts.push_back(std::move(row[0].text));
    return texts;
}

}  // namespace

Result<PhotoIndex> PhotoIndex::open(const std::string& path) {
    auto database = SqliteDatabase::open(path);
    if (!database) return std::move(database).error();
    PhotoIndex index(std::move(*database));
    if (auto prepared = index.prepare(); !prepared) return std::move(prepared).error();
    return index;
}

Result<void> PhotoIndex::prepare() {
    const auto version = database_.run("PRAGMA user_version");
    if (!version) return version.error();
    const std::int64_t number = (*version)[0][0].number;
    if (number == kVersion) return {};
    if (number != 0) return Error{ErrorKind::Unsupported, 0, "photo index: made by a newer version"};
    return database_.execute(kSchema);
}

Result<void> PhotoIndex::inTransaction(const std::function<Result<void>()>& steps) {
    if (auto begun = database_.execute("BEGIN IMMEDIATE"); !begun) return begun;
    auto done = steps();
    if (done) done = database_.execute("COMMIT");
    if (!done) (void)database_.execute("ROLLBACK");  // where it fails too, the next opening rolls back
    return done;
}

Result<std::vector<PhotoIndex::Album>> PhotoIndex::albums() {
    auto rows = database_.run("SELECT identifier, title, folder FROM album ORDER BY id");
    if (!rows) return std::move(rows).error();
    std::vector<Album> albums;
    for (Row& row : *rows)
        albums.push_back({std::move(row[0].text), std::move(row[1].text), std::move(row[2].text)});
    return albums;
}

Result<std::vector<PhotoIndex::Asset>> PhotoIndex::assets(const char* query, const Row& parameters) {
    auto rows = database_.run(query, parameters);
    if (!rows) return std::move(rows).error();
    std::vector<Asset> assets;
    for (Row& row : *rows) {
        const auto type = row[1].number == 2 ? PHAssetMediaType::Video : PHAssetMediaType::Image;
        assets.push_back({std::move(row[0].text),
                          type,
                          {std::move(row[2].text), std::move(row[3].text)},
                          std::move(row[4].text)});
    }
    return assets;
}

Result<std::vector<PhotoIndex::Asset>> PhotoIndex::assetsInAlbum(const std::string& identifier) {
    return assets(
        "SELECT asset.identifier, type, asset.folder, name, incoming FROM member"
        " JOIN asset ON asset.id = member.asset JOIN album ON album.id = member.album"
        " WHERE album.identifier = ? ORDER BY asset.id",
        {identifier});
}

Result<std::vector<PhotoIndex::Asset>> PhotoIndex::incomingAssets() {
    return assets("SELECT identifier, type, folder, name, incoming FROM asset WHERE incoming <> ''", {});
}

Result<std::vector<std::string>> PhotoIndex::namesIn(const std::string& folder) {
    auto rows = database_.run("SELECT name FROM asset WHERE folder = ?", {folder});
    if (!rows) return std::move(rows).error();
    return firstColumn(std::move(*rows));
}

Result<bool> PhotoIndex::knows(const std::string& identifier) {
    auto rows = database_.run(
        "SELECT 1 FROM asset WHERE identifier = ?1"
        " UNION ALL SELECT 1 FROM album WHERE identifier = ?1",
        {identifier});
    if (!rows) return std::move(rows).error();
    return !rows->empty();
}

Result<std::vector<PhotoPlace>> PhotoIndex::intents() {
    auto rows = database_.run("SELECT folder, name FROM intent ORDER BY name DESC");
    if (!rows) return std::move(rows).error();
    std::vector<PhotoPlace> places;
    for (Row& row : *rows) places.push_back({std::move(row[0].text), std::move(row[1].text)});
    return places;
}

Result<void> PhotoIndex::change(const char* statement, const Row& parameters) {
    auto rows = database_.run(statement, parameters);
    if (!rows) return std::move(rows).error();
    return {};
}

Result<void> PhotoIndex::addAlbum(const Album& album) {
    return change("INSERT INTO album (identifier, title, folder) VALUES (?, ?, ?)",
                  {album.identifier, album.title, album.folder});
}

Result<void> PhotoIndex::addAsset(const Asset& asset) {
    return change("INSERT INTO asset (identifier, type, folder, name, incoming) VALUES (?, ?, ?, ?, ?)",
                  {asset.identifier, static_cast<std::int64_t>(asset.type), asset.place.folder,
                   asset.place.name, asset.incoming});
}

Result<void> PhotoIndex::addMember(const std::string& album, const std::string& asset) {
    return change(
        "INSERT OR IGNORE INTO member (album, asset) VALUES"
        " ((SELECT id FROM album WHERE identifier = ?), (SELECT id FROM asset WHERE identifier = ?))",
        {album, asset});
}

Result<void> PhotoIndex::addIntent(const PhotoPlace& place) {
    return change("INSERT INTO intent (folder, name) VALUES (?, ?)", {place.folder, place.name});
}

Result<void> PhotoIndex::removeIntent(const PhotoPlace& place) {
    return change("DELETE FROM intent WHERE folder = ? AND name = ?", {place.folder, place.name});
}

Result<void> PhotoIndex::setName(const std::string& asset, const std::string& name) {
    return change("UPDATE asset SET name = ? WHERE identifier = ?", {name, asset});
}

Result<void> PhotoIndex::setArrived(const std::string& asset) {
    return change("UPDATE asset SET incoming = '' WHERE identifier = ?", {asset});
}

}  // namespace kx
