-- Version 105: PGNs that lack the safety columns of version 106, UDS services without authentication.
create table Strings (id integer primary key, string text);
create table Nodes (nodeId integer primary key, name text, edspath text, xddpath text);
create table GeneralSettings (item text unique, value text);
create table DescriptionSettings (item text unique, value text);
create table MiscSettings (item text unique, value text);
create table Objects0 (objectindex integer primary key, name integer, datatype integer not null, objecttype integer not null, description integer, category integer, device_class integer, fwsupported integer, metadata blob);
create table PGNs0 (number integer not null, edp_dp_key integer, priority integer, cycletime_ms integer, inhibittime_ms integer, mappingcount integer, direction integer, name integer, desc integer, issafe integer, srvt_ms integer, FD_TrailerFormat integer, FD_AssuranceType integer, FD_AssuranceDataSize integer, multisourceaddress integer);
create table SPNs0 (pgnnumber integer not null, spnnumber integer not null, datatype integer, implementation integer, varname text, defaultvalue text, name integer, desc integer, pos integer, bitsize integer, direction integer, slot_df integer, bitposition integer);
create table UDSSettings0 (sid integer not null, active integer, sessions text, userlevels text, UNIQUE(sid));
insert into Strings values(1, 'Engine');
insert into Nodes values(0, 'can0', '', '');
insert into GeneralSettings values('line0type', '2');
insert into MiscSettings values('DatabaseVersion', '105');
insert into MiscSettings values('SaveToolType', 'CANopen NodeComposer');
insert into PGNs0 values(65262, 0, 6, 1000, 0, 0, 119, 1, 1, 0, 0, 0, 0, 0, 0);
insert into UDSSettings0 values(34, 1, '1,3', '2');
