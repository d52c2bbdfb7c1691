<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name>ControlDialix</name>
    <message>
        <source>Dialix %1</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>DialixControl</name>
    <message>
        <source>RX </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Failed to open </source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source> for PTT transfer!</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>DialixOptions</name>
    <message>
        <source>Form</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>NO</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Rotate left or right for change VFO frequency</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Enable</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Use IF</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Use IF as RIT</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Use IF as XIT</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>VFO B</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Key Led</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Encoder Led</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No transfer PTT</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>PTT to ZLI</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>PTT to COM port</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Transfer PTT to COM</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Port name:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>DTR</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>RTS</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Volume:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Mic Gain:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>SQL:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Filter High:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Filter Low:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Filter Width:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Filter Shift:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Drive:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>RF Gain:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unused</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Band Up</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>BU</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Band Down</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>BD</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Mode Up</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>MU</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Mode Down</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>MD</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Volume Up</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>V+</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Volume Down</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>V-</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Mute</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>BIN</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>NR</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>ANF</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>NB1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>NB2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Filter Up</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>FU</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Filter Down</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>FD</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>SQL</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>PA</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Agc Up</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>AgcU</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Agc Down</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>AgcD</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Preamp Up</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>PrU</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Preamp Down</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>PrD</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Step Up</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>StU</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Step Down</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>StD</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Zoom In</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>ZM+</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Zoom Out</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>ZM-</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>MOX</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Tune</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Tun</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>WF</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Power On/Off</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>PWR</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Switch DDS/IF</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>D/I</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Switch Receiver</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>SR</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Change VFOA/VFOB</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>A/B</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>SubRX On/Off</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>VfB</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>RIT On/Off</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Rit</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>RIT Reset</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Rt0</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>IF as RIT</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>IfR</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>XIT On/Off</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Xit</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>XIT Reset</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Xt0</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Split</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Spl</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>TX / Play</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>T/P</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Voice recording</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>V/R</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>RX ANT</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>RxA</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>LOCK</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Lock</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>A-&gt;B</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>B-&gt;A</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>B&lt;-&gt;A</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Swap</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>APF</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Listen both RX1, RX2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>V.D</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Listen RX1 only</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>V.RX1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Listen RX2 only</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>V.RX2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Listen RX1 in left channel - RX2 in right</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>V.R1L</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Listen RX1 in right channel - RX2 in left</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>V.R1R</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Switch RX and mute former</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>SR.M</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>RX2 On/Off</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>RX2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Listen both VFO A/B</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>V.AB</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Listen VFO A only</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>V.A</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Listen VFO B only</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>V.B</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Listen VFO A in left channel - VFO B in right</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>V.AL</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Listen VFO A in right channel - VFO B in left</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>V.AR</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>VOX</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>NF</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Volume</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Vol</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Mic Gain</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Mic</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Filter Low</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>FL</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Filter High</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>FH</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Filter Width</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>FW</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Filter Shift</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>FS</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Drive</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Drv</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>IF</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>RF Gain</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>RF</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>CW Speed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>CWS</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>RIT Offset</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>XIT Offset</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Main</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>VFO/RX2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Audio</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>DSP</source>
        <translation type="unfinished"></translation>
    </message>
</context>
</TS>
