#ifndef TESTS_SCHEMAMUTATIONS_H
#define TESTS_SCHEMAMUTATIONS_H

/// Mistakes in documents, made by hand or by other programs. Each is one replacement in
/// a document of this repository.
struct Mutation
{
    const char* name;
    const char* find; ///< UTF-8; every occurrence is replaced, and there is at least one
    const char* replacement;
};

/// Mistakes in the default scenario (":/DefaultData/Default.sce.exp"), which the schema
/// refuses.
inline constexpr Mutation s_scenarioMutations[] = {
    // Names and places
    {"another root", "Scenario", "Szenario"},
    {"misspelt element", "<Class>Beacon</Class>", "<Klass>Beacon</Klass>"},
    {"element in another letter case", "<Power>0.5</Power>", "<power>0.5</power>"},
    {"misspelt element in the spelling of the dictionary", "HoppCount", "HopCount"},
    {"misspelt object", "ElintEmitter", "ElinthEmitter"},
    {"unknown element", "<Class>Beacon</Class>", "<Class>Beacon</Class><Owner>me</Owner>"},
    {"element of another kind of object", "    </Network>", "<EDWFile>x</EDWFile></Network>"},
    {"element inside another", "<Gain>2.15</Gain>", "<Gain>2.15<Direction>3</Direction></Gain>"},
    {"misspelt attribute", "Author=", "Autor="},
    {"attribute in the spelling of the dictionary", "DWellTime", "DwellTime"},
    {"unknown attribute", "<Power>0.5</Power>", "<Power Unit=\"W\">0.5</Power>"},
    {"attribute of another element", "<Network ID=\"survey\"", "<Network Default=\"true\" ID=\"survey\""},
    {"text among elements", "<Class>Beacon</Class>", "Beacon"},
    {"text in an element without any", "<Groups/>", "<Groups>none</Groups>"},
    // Missing and repeated parts
    {"emitter without id", "<Emitter ID=\"beacon\"", "<Emitter"},
    {"network without name", "Name=\"Road survey\" ", ""},
    {"emitter without active flag", "Name=\"Light beacon\" Active=\"true\"", "Name=\"Light beacon\""},
    {"point without dwell time", "DWellTime=\"1000\" ", ""},
    {"emission without signal package", " SignalPackage=\"9a567123-d88f-4177-9b57-b02c1ec104f7\"", ""},
    {"step without duration", "<Frequency Duration=\"400\">", "<Frequency>"},
    {"scenario without version", "FileFormatVersion=\"4\" ", ""},
    {"scenario without identity", "Uid=\"Default-1767225600-default\" ", ""},
    {"missing number", "<Gain>2.15</Gain>", ""},
    {"missing coordinate", "<Lat>54.4402</Lat>", ""},
    {"missing class", "<Class>Beacon</Class>", ""},
    {"element twice", "<Class>Beacon</Class>", "<Class>Beacon</Class><Class>Ship</Class>"},
    {"number twice", "<Density>-96</Density>", "<Density>-96</Density><Density>-97</Density>"},
    {"two frequencies", "<Fixed>312500</Fixed>", "<Fixed>312500</Fixed><Fixed>312600</Fixed>"},
    {"two kinds of frequency", "<Fixed>312500</Fixed>",
     "<Fixed>312500</Fixed><SlowHopper EndBehavior=\"STOP\"/>"},
    // Ids and references
    {"two emitters of one id", "ID=\"coast-station\"", "ID=\"beacon\""},
    {"emitters of both kinds with one id", "ID=\"harbour-radar\"", "ID=\"beacon\""},
    {"two emissions of one number", "ID=\"5\" StartTime", "ID=\"4\" StartTime"},
    {"two groups of one number", "<Group ID=\"2\"", "<Group ID=\"1\""},
    {"emission without number in a group", "<EmissionId>5</EmissionId>", "<EmissionId></EmissionId>"},
    {"unknown emission in a group", "<EmissionId>5</EmissionId>", "<EmissionId>7</EmissionId>"},
    {"unknown group in a group", "<GroupId>2</GroupId>", "<GroupId>7</GroupId>"},
    // Numbers
    {"frequency with a unit", "<Fixed>312500</Fixed>", "<Fixed>312.5 kHz</Fixed>"},
    {"power with a unit", "<Power>0.5</Power>", "<Power>0.5W</Power>"},
    {"time with a unit", "Duration=\"60000\"", "Duration=\"60 s\""},
    {"speed with a unit", "Speed=\"36\"", "Speed=\"36 km/h\""},
    {"position in degrees and minutes", "<Lat>54.4402</Lat>", "<Lat>54°26'25\"N</Lat>"},
    {"decimal comma", "<Gain>2.15</Gain>", "<Gain>2,15</Gain>"},
    {"separated thousands", "<Power>4000</Power>", "<Power>4'000</Power>"},
    {"number with blanks", "<Power>4000</Power>", "<Power>4 000</Power>"},
    {"word for a number", "<Power>4000</Power>", "<Power>high</Power>"},
    {"empty number", "<Power>4000</Power>", "<Power/>"},
    {"infinite number", "<Power>4000</Power>", "<Power>inf</Power>"},
    {"number that is none", "<Lon>11.0231</Lon>", "<Lon>nan</Lon>"},
    {"hexadecimal number", "<HoppSet>7</HoppSet>", "<HoppSet>0x7</HoppSet>"},
    {"fraction of a channel", "<HoppCount>128</HoppCount>", "<HoppCount>128.5</HoppCount>"},
    {"whole number with an exponent", "Duration=\"60000\"", "Duration=\"6e4\""},
    {"fraction of a millisecond", "Duration=\"60000\"", "Duration=\"60000.5\""},
    {"negative time", "DWellTime=\"1000\"", "DWellTime=\"-1000\""},
    {"time above 32 bits", "Duration=\"60000\"", "Duration=\"4294967296\""},
    {"time above 64 bits", "StartTime=\"1250\"", "StartTime=\"9223372036854775808\""},
    {"negative period", "Broadcast=\"false\" Duration=\"2500\"", "Broadcast=\"false\" Duration=\"-2500\""},
    // Truth values, known texts and colours
    {"number for a truth value", "Active=\"false\"", "Active=\"0\""},
    {"word for a truth value", "Active=\"false\"", "Active=\"no\""},
    {"truth value in capitals", "Broadcast=\"true\"", "Broadcast=\"TRUE\""},
    {"empty truth value", "Major=\"false\"", "Major=\"\""},
    {"negated mark of the default emitter", "Default=\"true\"", "Default=\"false\""},
    {"negated mark of a head", "Head=\"true\"", "Head=\"false\""},
    {"end behaviour in lower case", "EndBehavior=\"INACTIVE\"", "EndBehavior=\"inactive\""},
    {"unknown end behaviour", "EndBehavior=\"RESTART\"", "EndBehavior=\"LOOP\""},
    {"unknown topology", "<NetworkType>Star</NetworkType>", "<NetworkType>Ring</NetworkType>"},
    {"topology in lower case", "<NetworkType>Star</NetworkType>", "<NetworkType>star</NetworkType>"},
    {"colour that is none", "<Color>#1f77b4</Color>", "<Color>blueish</Color>"},
    {"colour with too few digits", "<Color>#1f77b4</Color>", "<Color>#1f77b</Color>"},
    {"empty colour", "<Color>#1f77b4</Color>", "<Color></Color>"},
    {"older version", "FileFormatVersion=\"4\"", "FileFormatVersion=\"3\""},
    {"newer version", "FileFormatVersion=\"4\"", "FileFormatVersion=\"5\""},
};

/// Mistakes in the default scenario that the schema accepts, because programs can write
/// such documents or because XML Schema cannot express the rule.
inline constexpr Mutation s_acceptedScenarioMutations[] = {
    {"latitude beyond the pole", "<Lat>54.4402</Lat>", "<Lat>95</Lat>"},
    {"longitude beyond a turn", "<Lon>11.0231</Lon>", "<Lon>511.0231</Lon>"},
    {"negative frequency", "<Fixed>312500</Fixed>", "<Fixed>-312500</Fixed>"},
    {"maximum below minimum", "<MaximumFrequency>4.432e+08", "<MaximumFrequency>4.32e+08"},
    {"too many channels", "<HoppCount>128</HoppCount>", "<HoppCount>4294967295</HoppCount>"},
    {"no channels", "<HoppCount>128</HoppCount>", "<HoppCount>0</HoppCount>"},
    {"offset of more than a hop", "<TimeslotOffset>0.5<", "<TimeslotOffset>1.5<"},
    {"negative antenna height", "<HeightOverGround>32.5<", "<HeightOverGround>-32.5<"},
    {"negative start", "StartTime=\"1250\"", "StartTime=\"-1250\""},
    {"negative length", "Duration=\"1800\"", "Duration=\"-1800\""},
    {"negative speed", "Speed=\"36\"", "Speed=\"-36\""},
    {"number above the largest one", "<Power>4000</Power>", "<Power>4e999</Power>"},
    {"transition time that contradicts the speed", "TransitionTime=\"2576\"", "TransitionTime=\"1\""},
    {"speed of an intermediate point", "Major=\"false\"", "Major=\"false\" Speed=\"70\""},
    {"way point without speed", " Speed=\"36\"", ""},
    {"empty frequency", "<Fixed>312500</Fixed>", ""},
    {"empty id", "ID=\"beacon\"", "ID=\"\""},
    {"emission of an unknown emitter", "Emitter=\"beacon\"", "Emitter=\"bacon\""},
    {"link to an unknown emitter", "LinkTarget=\"ferry\"", "LinkTarget=\"fery\""},
    {"unknown member", "<Emitter>pilot-boat</Emitter>", "<Emitter>pilot</Emitter>"},
    {"member twice", "<Emitter>pilot-boat</Emitter>", "<Emitter>ferry</Emitter>"},
    {"unknown signal package", "SignalPackage=\"9a567123", "SignalPackage=\"9a567124"},
    {"group that contains itself", "<GroupId>2</GroupId>", "<GroupId>3</GroupId>"},
    {"groups in a circle", "<EmissionId>3</EmissionId>", "<EmissionId>3</EmissionId><GroupId>3</GroupId>"},
    {"two networks of one id", "Network ID=\"survey\"", "Network ID=\"calling-channel\""},
};

/// Mistakes in "deployments/Full.xml" of the test data, which the schema refuses.
inline constexpr Mutation s_deploymentMutations[] = {
    {"another root", "SimulationDeployment", "Deployment"},
    {"misspelt element", "<DeviceType>DF</DeviceType>", "<Devicetype>DF</Devicetype>"},
    {"unknown element", "<Machine>pc-2</Machine>", "<Machine>pc-2</Machine><Port>1</Port>"},
    {"attribute in the spelling of the dictionary", "PersistantId", "PersistentId"},
    {"unknown attribute", "<AntennaGain>-3.5", "<AntennaGain Unit=\"dBi\">-3.5"},
    {"text among elements", "<Machine>pc-2</Machine>", "pc-2"},
    {"older position", "<Lon>8.1234567890123</Lon>", "<Longitude>8.1234567890123</Longitude>"},
    {"device without id", "<Device ID=\"alone\"", "<Device"},
    {"station without name", "<Station ID=\"ship\" Name=\"ship\"", "<Station ID=\"ship\""},
    {"deployment without version", "FileFormatVersion=\"1\" ", ""},
    {"missing receiver number", "<AntennaGain>-3.5</AntennaGain>", ""},
    {"missing coordinate", "<Lat>-48.5</Lat>", ""},
    {"element twice", "<Machine>pc-2</Machine>", "<Machine>pc-2</Machine><Machine>pc-3</Machine>"},
    {"two devices of one id", "ID=\"mobile\"", "ID=\"alone\""},
    {"two stations of one id", "</SimulationDeployment>",
     "<Station ID=\"ship\" Name=\"ship\"><IconId/><Position/></Station></SimulationDeployment>"},
    {"gain with a unit", "<AntennaGain>-3.5<", "<AntennaGain>-3.5 dBi<"},
    {"decimal comma", "<AntennaHeight>12.3457<", "<AntennaHeight>12,3457<"},
    {"empty number", "<AntennaHeight>12.3457<", "<AntennaHeight><"},
    {"word for a number", "<Lon>9.5</Lon>", "<Lon>east</Lon>"},
    {"negative time", "DWellTime=\"10\"", "DWellTime=\"-10\""},
    {"time above 32 bits", "DWellTime=\"10\"", "DWellTime=\"4294967296\""},
    {"number for a truth value", "Major=\"true\"", "Major=\"1\""},
    {"unknown end behaviour", "EndBehavior=\"STOP\"", "EndBehavior=\"Stop\""},
    {"newer version", "FileFormatVersion=\"1\"", "FileFormatVersion=\"2\""},
};

/// Mistakes in the same document that the schema accepts.
inline constexpr Mutation s_acceptedDeploymentMutations[] = {
    {"latitude beyond the pole", "<Lat>-48.5</Lat>", "<Lat>-91</Lat>"},
    {"longitude beyond a turn", "<Lon>9.5</Lon>", "<Lon>369.5</Lon>"},
    {"unknown station", "<Station>ship</Station>", "<Station>boat</Station>"},
    {"station whose name is not its id", "Name=\"ship\"", "Name=\"boat\""},
    {"empty id", "ID=\"alone\"", "ID=\"\""},
};

/// Mistakes in the descriptor of the package Default, which the schema refuses.
inline constexpr Mutation s_descriptorMutations[] = {
    {"another root", "SignalPackage", "Package"},
    {"misspelt element", "Bandwidth", "BandWidth"},
    {"misspelt attribute", "UID=", "Uid="},
    {"unknown attribute", "<MetaData>", "<MetaData Language=\"en\">"},
    {"missing id", "UID=\"c0d40372-37c8-4ad4-9fb1-97bfc477769c\"", ""},
    {"missing name", "<Name>Default</Name>", ""},
    {"bandwidth with a unit", "<Bandwidth>10000<", "<Bandwidth>10 kHz<"},
    {"decimal comma", "<Bandwidth>10000<", "<Bandwidth>10000,5<"},
    {"duration with a unit", "<Duration>3000<", "<Duration>3 s<"},
    {"duration above 32 bits", "<Duration>3000<", "<Duration>4294967296<"},
    {"timestamp as a date", "Timestamp=\"1704067200\"", "Timestamp=\"2024-01-01\""},
    {"unknown modulation", "<AnalogModulation>None<", "<AnalogModulation>PM<"},
    {"modulation in lower case", "<AnalogModulation>None<", "<AnalogModulation>fm<"},
    {"newer version", "FileFormatVersion=\"0\"", "FileFormatVersion=\"1\""},
};

/// Mistakes in the command that starts a scenario (at 1000 us, scenario time 250 ms),
/// which the schema refuses.
inline constexpr Mutation s_commandMutations[] = {
    {"another root", "Command", "Order"},
    {"unknown command", "StartScenario", "BeginScenario"},
    {"command in another letter case", "StartScenario", "startScenario"},
    {"two commands", "</Command>", "<StopScenario/></Command>"},
    {"missing part", "<ScenarioTime>250</ScenarioTime>", ""},
    {"misspelt part", "Timestamp", "TimeStamp"},
    {"unknown part", "</ScenarioTime>", "</ScenarioTime><Speed>2</Speed>"},
    {"unknown attribute", "<StartScenario>", "<StartScenario Id=\"rx-7\">"},
    {"text in a command", "<StartScenario>", "<StartScenario>now"},
    {"time with a unit", "<ScenarioTime>250<", "<ScenarioTime>250 ms<"},
    {"time above 32 bits", "<ScenarioTime>250<", "<ScenarioTime>4294967296<"},
    {"negative timestamp", "<Timestamp>1000<", "<Timestamp>-1000<"},
    {"timestamp above 64 bits", "<Timestamp>1000<", "<Timestamp>18446744073709551616<"},
};

#endif
