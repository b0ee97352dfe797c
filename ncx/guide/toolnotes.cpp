#include "ncx/guide/toolnotes.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

using enum ToolNote::Effect;
using Answer = ToolNote::Answer;

constexpr ToolNote
    notes[] =
        {
            {"open_project"_L1, Opens, Answer::Object},
            {"new_project"_L1, Opens, Answer::Object},
            {"import_file"_L1, Removes, Answer::Edit},
            {"generate"_L1, Writes, Answer::Object},
            {"save_project"_L1, Writes, Answer::Object},
            {"check_model"_L1, Reads, Answer::Findings},
            {"show"_L1, Reads, Answer::Object},
            {"diff_project"_L1, Reads, Answer::Page},
            {"undo"_L1, Steps, Answer::Edit},
            {"redo"_L1, Steps, Answer::Edit},
            {"list_lines"_L1, Reads, Answer::Items,
             "List the CAN lines of the open project with their protocols (lineTypeCode 1 CANopen, 2 J1939, 4 raw CAN, 5 CANopen+J1939, 6 CANopen+RawCAN, 7 J1939+RawCAN). Use it first in a project that you do not know. Example: {}"_L1},
            {"get_line"_L1, Reads, Answer::Object,
             "Get the name and NMT role of a line and its numbers of PDOs; use show for its frames. Example: {\"line\": 0}"_L1},
            {"add_line"_L1, Adds, Answer::Edit,
             "Add a line without objects and messages, e.g. for a gateway. Example: {\"line\": 1, \"lineType\": \"J1939\", \"name\": \"engine\"}"_L1},
            {"set_line"_L1, Sets, Answer::Edit},
            {"delete_line"_L1, Removes, Answer::Edit},
            {"list_indices"_L1, Reads, Answer::Page},
            {"find_indices"_L1, Reads, Answer::Page},
            {"get_index"_L1, Reads, Answer::Object,
             "Get an object with its subindices; use show to see its PDO as well. Example: {\"line\": 0, \"index\": 24641}"_L1},
            {"get_subindex"_L1, Reads, Answer::Object,
             "Get one subindex of an object. Example: {\"line\": 0, \"index\": 4120, \"sub\": 1}"_L1},
            {"add_index"_L1, Adds, Answer::Edit,
             "Add an object with its subindex 0; an ARRAY or RECORD gets the others by set_subindex with addMissing. Use 8192 to 24575 (0x2000 to 0x5fff) for objects of your own, import_profile_indices for those of CiA. Example: {\"line\": 0, \"index\": 8192, \"name\": \"Oil temperature\", \"objectType\": \"Variable\", \"dataType\": 3, \"description\": \"in 0.1 K\"}"_L1},
            {"set_index"_L1, Sets, Answer::Edit},
            {"set_index_name"_L1, Sets, Answer::Edit,
             "Rename an object; set_index changes more of it. Example: {\"line\": 0, \"index\": 8192, \"name\": \"Oil temperature\"}"_L1},
            {"delete_index"_L1, Removes, Answer::Edit,
             "Delete an object with all its subindices; undo brings it back. Example: {\"line\": 0, \"index\": 8192}"_L1},
            {"copy_index"_L1, Removes, Answer::Edit,
             "Copy an object with its subindices to another index or line of the open project; what is there is replaced. Use it for objects that are alike. Example: {\"srcLine\": 0, \"srcIndex\": 8193, \"destLine\": 0, \"destIndex\": 8194}"_L1},
            {"add_subindex"_L1, Adds, Answer::Edit,
             "Add one subindex to an object; for several at once, limits or variables use set_subindex with addMissing. Example: {\"line\": 0, \"index\": 8193, \"sub\": 1, \"name\": \"Housing\", \"dataType\": 3, \"accessType\": \"ro\"}"_L1},
            {"set_subindex"_L1, Sets, Answer::Edit},
            {"set_subindex_value"_L1, Sets, Answer::Edit,
             "Change the default value of a subindex, and nothing else of it. Example: {\"line\": 0, \"index\": 4119, \"sub\": 0, \"defaultValue\": \"500\"}"_L1},
            {"delete_subindex"_L1, Removes, Answer::Edit,
             "Delete one subindex of an object. Example: {\"line\": 0, \"index\": 8193, \"sub\": 2}"_L1},
            {"list_profiles"_L1, Reads, Answer::Items},
            {"list_profile_indices"_L1, Reads, Answer::Page},
            {"get_profile_index"_L1, Reads, Answer::Object,
             "Get an object of a reference profile with its subindices, before import_profile_indices copies it. Example: {\"profile\": \"402\", \"index\": 24640}"_L1},
            {"import_profile_indices"_L1, Adds, Answer::Edit,
             "Copy objects of a reference profile into a CANopen line. Use it rather than add_index for what CiA defines; what the line has already is skipped. Example: {\"profile\": \"402\", \"line\": 0, \"indices\": [24640, 24641]}"_L1},
            {"list_pgns"_L1, Reads, Answer::Page},
            {"get_pgn"_L1, Reads, Answer::Object,
             "Get a PGN with its SPNs; use show to see its frame. Example: {\"line\": 0, \"pgn\": 65262, \"direction\": \"Transmit\"}"_L1},
            {"add_pgn"_L1, Adds, Answer::Edit,
             "Add a PGN to a J1939 line; add_spn then gives it signals. Times are in ms. Example: {\"line\": 0, \"pgn\": 65262, \"direction\": \"Transmit\", \"name\": \"Engine temperature 1\", \"cycleTimeMs\": 1000, \"priority\": 6}"_L1},
            {"delete_pgn"_L1, Removes, Answer::Edit,
             "Delete a PGN with its SPNs, e.g. to add it anew with another cycle time. Example: {\"line\": 0, \"pgn\": 65262, \"direction\": \"Transmit\"}"_L1},
            {"list_spns"_L1, Reads, Answer::Items,
             "List the SPNs of a PGN. Example: {\"line\": 0, \"pgn\": 65262, \"direction\": \"Transmit\"}"_L1},
            {"get_spn"_L1, Reads, Answer::Object,
             "Get one SPN of a PGN. Example: {\"line\": 0, \"pgn\": 65262, \"direction\": \"Transmit\", \"spn\": 110}"_L1},
            {"add_spn"_L1, Adds, Answer::Edit,
             "Add an SPN to a PGN, with a variable of the application. Position and size are in bits, in ascending order. Example: {\"line\": 0, \"pgn\": 65262, \"direction\": \"Transmit\", \"spn\": 110, \"name\": \"Coolant temperature\", \"dataType\": 5, \"pos\": 1, \"bitPosition\": 0, \"bitSize\": 8, \"varname\": \"coolant\"}"_L1},
            {"delete_spn"_L1, Removes, Answer::Edit,
             "Delete one SPN of a PGN, e.g. to add it anew. Example: {\"line\": 0, \"pgn\": 65262, \"direction\": \"Transmit\", \"spn\": 110}"_L1},
            {"list_can_ids"_L1, Reads, Answer::Page},
            {"get_can_id"_L1, Reads, Answer::Object,
             "Get a CAN-ID with its data elements; use show to see its frame. Example: {\"line\": 0, \"canId\": 256, \"direction\": \"Transmit\"}"_L1},
            {"add_can_id"_L1, Adds, Answer::Edit, "Add a CAN-ID to a raw CAN line; add_data_element then gives it signals. Times are in ms. Example: {\"line\": 0, \"canId\": 419385573, \"extended\": true, \"direction\": \"Transmit\", \"name\": \"Pressure\", \"cycleTimeMs\": 100}"_L1},
            {"delete_can_id"_L1, Removes, Answer::Edit,
             "Delete a CAN-ID with its data elements, e.g. to add it anew. Example: {\"line\": 0, \"canId\": 256, \"direction\": \"Transmit\"}"_L1},
            {"add_data_element"_L1, Adds, Answer::Edit,
             "Add a data element to a CAN-ID, with a variable of the application. Position and size are in bits. Example: {\"line\": 0, \"canId\": 256, \"direction\": \"Transmit\", \"number\": 1, \"name\": \"Pressure in kPa\", \"dataType\": 6, \"pos\": 1, \"bitPosition\": 0, \"bitSize\": 16, \"varname\": \"pressure\"}"_L1},
            {"delete_data_element"_L1, Removes, Answer::Edit,
             "Delete one data element of a CAN-ID, e.g. to add it anew. Example: {\"line\": 0, \"canId\": 256, \"direction\": \"Transmit\", \"number\": 1}"_L1},
            {"get_settings"_L1, Reads, Answer::Object,
             "Get the values of all settings of the project (general) or of its CANopen stack (stack), by section. Long: use get_setting for a key that you know. Example: {\"group\": \"stack\", \"line\": 0}"_L1},
            {"get_setting"_L1, Reads, Answer::Object,
             "Get a setting: value, meaning, what it takes and which other one it needs. Example: {\"key\": \"limit_check\"}"_L1},
            {"set_setting"_L1, Sets, Answer::Edit,
             "Set a setting of the project; get_setting tells what it takes. isotp_supported false also clears the ISO-TP settings of the line. Example: {\"key\": \"co_node_id\", \"value\": 5, \"line\": 0}"_L1},
            {"list_description_settings"_L1, Reads, Answer::Page},
            {"set_description_setting"_L1, Sets, Answer::Edit},
            {"list_j1939_settings"_L1, Reads, Answer::Page},
            {"set_j1939_setting"_L1, Sets, Answer::Edit},
};

} // namespace

ToolNote ToolNote::of(QLatin1StringView tool)
{
    const auto *const found = std::ranges::find(notes, tool, &ToolNote::name);
    return found == std::end(notes) ? ToolNote{.name = tool, .effect = Effect::Writes, .answer = Answer::Object}
                                    : *found;
}

QJsonObject ToolNote::annotations() const
{
    return {{u"readOnlyHint"_s, effect == Effect::Reads},
            {u"destructiveHint"_s, effect == Effect::Removes || effect == Effect::Opens || effect == Effect::Writes ||
                                       effect == Effect::Steps},
            {u"idempotentHint"_s, effect == Effect::Reads || effect == Effect::Sets || effect == Effect::Writes},
            {u"openWorldHint"_s, false}};
}
