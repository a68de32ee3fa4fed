<?xml version="1.0" encoding="UTF-8"?>
<Scenario FileFormatVersion="4" Name="Rich" Author="Müller" Uid="Rich-1-machine" Duration="60000">
    <Description>Everything</Description>
    <NoiseSettings>
        <Density>-35</Density>
        <Deviation>-45</Deviation>
        <FrequencyDependentDensity>-35</FrequencyDependentDensity>
        <FrequencyDependentGranularity>0.4</FrequencyDependentGranularity>
        <FrequencyDependentVariability>1.23457e+06</FrequencyDependentVariability>
    </NoiseSettings>
    <ElintEmitter ID="a" Name="Pulses" Active="true" LinkTarget="f">
        <Description></Description>
        <Class></Class>
        <Transmitter>
            <Power>1</Power>
            <Antenna Type="Default">
                <Gain>0</Gain>
                <HeightOverGround>2</HeightOverGround>
                <Direction>0</Direction>
            </Antenna>
        </Transmitter>
        <Frequency>
            <SlowHopper EndBehavior="STOP">
                <Frequency Duration="250">1.5e+06</Frequency>
                <Frequency Duration="0">2.5e+06</Frequency>
            </SlowHopper>
        </Frequency>
        <EmissionSettings Broadcast="false" Duration="500">
            <Emission ID="3" StartTime="0" Duration="100" Emitter="a" SignalPackage="p-1"/>
            <Groups/>
        </EmissionSettings>
        <Position>
            <Movement EndBehavior="INACTIVE">
                <Position DWellTime="1000" TransitionTime="0" Major="true" Speed="50" Name="Start">
                    <Lon>10</Lon>
                    <Lat>50</Lat>
                </Position>
                <Position DWellTime="0" TransitionTime="0" Major="false">
                    <Lon>10</Lon>
                    <Lat>50</Lat>
                </Position>
                <Position DWellTime="1000" TransitionTime="0" Major="true" Speed="3.6" Name="End">
                    <Lon>10</Lon>
                    <Lat>50</Lat>
                </Position>
            </Movement>
        </Position>
        <EDWFile>dir\pulses.edw</EDWFile>
    </ElintEmitter>
    <Emitter ID="c" Name="Chirp &quot;&lt;&amp;&gt;'" Active="true" Default="true">
        <Description>two
lines&#13;
 &amp; 📡</Description>
        <Class>Radar</Class>
        <Transmitter>
            <Power>12.5</Power>
            <Antenna Type="Dish">
                <Gain>-3.25</Gain>
                <HeightOverGround>30</HeightOverGround>
                <Direction>270</Direction>
            </Antenna>
        </Transmitter>
        <Frequency>
            <Chirp>
                <StartFrequency>4.33925e+08</StartFrequency>
                <StopFrequency>2e+06</StopFrequency>
                <Duration>4294967295</Duration>
                <TimeslotOffset>0.125</TimeslotOffset>
            </Chirp>
        </Frequency>
        <EmissionSettings Broadcast="false" Duration="9223372036854775807">
            <Groups/>
        </EmissionSettings>
        <Position>
            <Fixed>
                <Lon>8.1234567890123</Lon>
                <Lat>-48.5</Lat>
            </Fixed>
        </Position>
    </Emitter>
    <Emitter ID="f" Name="Hopper" Active="false">
        <Description></Description>
        <Class></Class>
        <Transmitter>
            <Power>1</Power>
            <Antenna Type="Default">
                <Gain>0</Gain>
                <HeightOverGround>2</HeightOverGround>
                <Direction>0</Direction>
            </Antenna>
        </Transmitter>
        <Frequency>
            <FastHopper>
                <MinimumFrequency>3e+07</MinimumFrequency>
                <MaximumFrequency>8.8e+07</MaximumFrequency>
                <HoppCount>4294967295</HoppCount>
                <HoppRate>300</HoppRate>
                <HoppSet>7</HoppSet>
                <TimeslotOffset>0.5</TimeslotOffset>
            </FastHopper>
        </Frequency>
        <EmissionSettings Broadcast="false" Duration="9223372036854775807">
            <Groups/>
        </EmissionSettings>
        <Position>
            <Movement EndBehavior="INACTIVE">
                <Position DWellTime="1000" TransitionTime="0" Major="true" Speed="50" Name="Start">
                    <Lon>10</Lon>
                    <Lat>50</Lat>
                </Position>
                <Position DWellTime="0" TransitionTime="0" Major="false">
                    <Lon>10</Lon>
                    <Lat>50</Lat>
                </Position>
                <Position DWellTime="1000" TransitionTime="0" Major="true" Speed="3.6" Name="End">
                    <Lon>10</Lon>
                    <Lat>50</Lat>
                </Position>
            </Movement>
        </Position>
    </Emitter>
    <Network ID="c" Name="Net" Active="true">
        <Description></Description>
        <Color>#12abef</Color>
        <NetworkType>Star</NetworkType>
        <Frequency>
            <Fixed>2.5e+07</Fixed>
        </Frequency>
        <EmissionSettings Broadcast="true" Duration="9223372036854775807">
            <Emission ID="9" StartTime="-9223372036854775808" Duration="100" Emitter="" SignalPackage=""/>
            <Emission ID="4" StartTime="10" Duration="100" Emitter="f" SignalPackage="p-2"/>
            <Groups>
                <Group ID="1">
                    <GroupId>2</GroupId>
                </Group>
                <Group ID="2" Name="Inner">
                    <EmissionId>4</EmissionId>
                </Group>
            </Groups>
        </EmissionSettings>
        <Emitter Head="true">f</Emitter>
        <Emitter>c</Emitter>
    </Network>
</Scenario>
