#pragma once

// The host command table.
//
// Every command message is a QVariantList led by the command id (an int, 0 to
// 189) and followed by the command's arguments. QRV_COMMANDS below is the only
// place where the commands are listed; it declares the signals and slots of
// qrvCommand, generates its encoders and its dispatcher, and fills the
// description arrays at the end of this file that tests, tools and log
// printers read.
//
// Rows are in declaration order, which is not id order. Five kinds of row:
//
//   C(id, slot, signal, n, (code, name, ...))  an encoder slot and the signal
//                                               that a received message of the
//                                               id emits, with one parameter list
//   E(id, slot, n, (code, name, ...))          an encoder slot only
//   S(id, signal, n, (code, name, ...))        a decoded signal only
//   O(id, slot, signal, n, (...), name)        a C row whose slot and signal
//                                               overload another id's; `name`
//                                               names its id in qrv::Id
//   F(id, slot, signal, value)                 an argument-less slot that sends
//                                               the fixed flag `value`, and an
//                                               argument-less signal emitted when
//                                               a message's flag equals `value`
//
// E and S rows come in pairs or stand alone where the sent and the decoded form
// of an id differ (type, name, or a slot that sends another command's id).
//
// A parameter code fixes the C++ type, the variant type on the wire and the
// conversion used on receipt:
//
//   U    uint       wire uint        received through an int conversion
//   UU   uint       wire uint        received through an unsigned conversion
//   I    int        wire int
//   B    bool       wire bool
//   BI   bool       wire bool        received through an int conversion (!= 0)
//   BU   bool       wire uint 0/1
//   D    double     wire double
//   ULL  qulonglong wire qulonglong
//   L    long       wire qulonglong  (an address; received as signed 64 bits)
//   K    CwKeyControlAbstract*, wire qulonglong (the object's address)
//   IL   QList<int>    wire: nested list of int
//   PL   QList<void *> wire: nested list of qulonglong addresses

#include <QMetaType>

#include <QByteArray>
#include <QString>
#include <QVariant>

#include <iterator>

// clang-format off
#define QRV_COMMANDS(C, E, S, F, O) \
    C(166, qrvStart,          sQrvStart,          2, (U, receiver, B, state)) \
    C(0,   open,              sOpen,              1, (B, state)) \
    F(0,   open,              sOpen,              true) \
    F(0,   close,             sClose,             false) \
    C(1,   start,             sStart,             1, (B, state)) \
    F(1,   start,             sStart,             true) \
    F(1,   stop,              sStop,              false) \
    C(14,  bandScope,         sBandScope,         3, (B, enable, ULL, freq, U, decimate)) \
    C(11,  sampleRate,        sSampleRate,        1, (D, value)) \
    C(2,   rxAntSwitch,       sRxAntSwitch,       1, (U, index)) \
    C(3,   mox,               sMox,               2, (U, channel, B, state)) \
    C(4,   ptt,               sPtt,               2, (U, channel, B, state)) \
    C(5,   tone,              sTone,              2, (U, channel, B, state)) \
    C(6,   trxMode,           sTrxMode,           3, (UU, tranceiver, UU, ptt, B, state)) \
    C(7,   tonMode,           sTonMode,           3, (UU, tranceiver, UU, ptt, B, state)) \
    C(8,   moxChacked,        sMoxChacked,        2, (UU, tranceiver, B, state)) \
    C(9,   moxEnable,         sMoxEnable,         2, (UU, tranceiver, B, state)) \
    C(10,  trxLock,           sTrxLock,           2, (UU, tranceiver, B, state)) \
    C(12,  receiverEnable,    sReceiverEnable,    2, (U, id, B, state)) \
    C(13,  receiverChannelEnable, sReceiverChannelEnable, 3, (U, receiver, U, channel, B, state)) \
    C(15,  fftSize,           sFftSize,           1, (U, size)) \
    C(16,  fftAveragingType,  sFftAveragingType,  1, (U, size)) \
    C(17,  fftAveragingNum,   sFftAveragingNum,   1, (U, size)) \
    C(18,  fftUpdateTime,     sFftUpdateTime,     1, (U, size)) \
    C(19,  rxVfo,             sRxVfo,             3, (U, receiver, U, channel, D, value)) \
    C(20,  rxOscFreq,         sRxOscFreq,         2, (U, channel, D, freq)) \
    C(21,  rxPreamp,          sRxPream,           1, (U, index)) \
    C(22,  rxVolume,          sRxVolume,          3, (U, receiver, I, channel, I, dB)) \
    C(23,  rxBalance,         sRxBalance,         3, (U, receiver, I, channel, I, dB)) \
    C(24,  rxMute,            sRxMute,            3, (U, receiver, I, channel, B, state)) \
    C(25,  rxAgcGain,         sRxAgcGain,         3, (U, id, U, channel, I, dB)) \
    C(26,  rxAgcMode,         sRxAgcMode,         3, (U, id, U, channel, U, index)) \
    C(27,  rxDownConvert,     sRxDownConvert,     3, (U, id, U, channel, D, freq)) \
    C(28,  rxFilter,          sRxFilter,          4, (U, id, U, channel, D, low, D, high)) \
    C(29,  rxMode,            sRxMode,            3, (U, id, U, channel, U, index)) \
    C(30,  rxBand,            sRxBand,            2, (U, channel, U, index)) \
    C(31,  rxBin,             sRxBin,             2, (U, channel, B, state)) \
    C(32,  rxNB1,             sRxNB1,             2, (U, channel, B, state)) \
    E(33,  rxNB1Level,                            2, (U, channel, I, dB)) \
    S(33,                     sRxNB1Level,        2, (U, channel, D, value)) \
    C(34,  rxNB2,             sRxNB2,             2, (U, channel, B, state)) \
    C(35,  rxNB2Level,        sRxNB2Level,        2, (U, channel, I, dB)) \
    C(36,  rxNR,              sRxNR,              2, (U, channel, B, state)) \
    C(37,  rxNRTaps,          sRxNRTaps,          2, (U, channel, U, value)) \
    C(38,  rxNRDelay,         sRxNRDelay,         2, (U, channel, U, value)) \
    C(39,  rxNRGain,          sRxNRGain,          2, (U, channel, I, dB)) \
    C(40,  rxNRLeak,          sRxNRLeak,          2, (U, channel, I, dB)) \
    C(41,  rxANF,             sRxANF,             2, (U, channel, B, state)) \
    C(42,  rxANFTaps,         sRxANFTaps,         2, (U, channel, U, value)) \
    C(43,  rxANFDelay,        sRxANFDelay,        2, (U, channel, U, value)) \
    C(44,  rxANFGain,         sRxANFGain,         2, (U, channel, I, dB)) \
    C(45,  rxANFLeak,         sRxANFLeak,         2, (U, channel, I, dB)) \
    C(46,  rxNF,              sRxNF,              3, (U, channel, U, index, B, state)) \
    O(47,  rxNF,              sRxNF,              4, (U, channel, U, index, D, freq, D, band), rxNFBand) \
    C(48,  rxEqualizer,       sRxEqualizer,       2, (U, channel, B, state)) \
    O(49,  rxEqualizer,       sRxEqualizer,       2, (U, channel, IL, values), rxEqualizerValues) \
    C(50,  rxSql,             sRxSql,             3, (U, receiver, U, channel, B, state)) \
    C(51,  rxSqlValue,        sRxSqlLevel,        3, (U, receiver, U, channel, I, dB)) \
    C(52,  rxSplit,           sRxSplit,           2, (UU, tranceiver, B, state)) \
    C(54,  rxRit,             sRxRit,             3, (U, receiver, U, channel, I, value)) \
    C(55,  rxRitReset,        sRxRitReset,        2, (U, receiver, U, channel)) \
    C(56,  rxRitEnable,       sRxRitEnable,       3, (U, receiver, U, channel, B, state)) \
    C(57,  rxXit,             sRxXit,             3, (U, receiver, U, channel, I, value)) \
    E(58,  rxXitEnable,                           3, (U, receiver, U, channel, B, state)) \
    C(58,  rxXitReset,        sRxXitReset,        2, (U, receiver, U, channel)) \
    S(59,                     sRxXitEnable,       3, (U, receiver, U, channel, B, state)) \
    C(60,  rxDigOffset,       sRxDigOffset,       2, (I, digl, I, digu)) \
    C(61,  txEnable,          sTxEnable,          2, (U, transmitter, B, state)) \
    C(62,  txOscFreq,         sTxOscFreq,         2, (U, channel, D, freq)) \
    C(63,  txAntSwitch,       sTxAntSwitch,       1, (U, index)) \
    C(64,  txMic,             sTxMic,             2, (U, transmitter, U, index)) \
    C(65,  txMicValue,        sTxMicGain,         2, (U, transmitter, I, dB)) \
    C(66,  txMicAgcEnable,    sTxMicAgcEnable,    2, (U, transmitter, B, state)) \
    C(67,  txMode,            sTxMode,            2, (U, channel, U, index)) \
    C(68,  txMon,             sTxMon,             2, (U, channel, BI, state)) \
    O(69,  txMon,             sTxMonValue,        2, (U, channel, I, dB), txMonValue) \
    C(70,  txDrive,           sTxDrive,           2, (U, transmitter, U, value)) \
    C(71,  txToneDrive,       sTxToneDrive,       2, (U, transmitter, U, value)) \
    C(72,  txExtCtrl,         sTxExtCtrl,         1, (UU, value)) \
    C(73,  txComp,            sTxComp,            2, (U, channel, B, state)) \
    E(74,  txCompVal,                             2, (U, channel, I, dB)) \
    S(74,                     sTxCompValue,       2, (U, channel, I, val)) \
    E(75,  txCompThr,                             2, (U, channel, I, dB)) \
    S(75,                     sTxCompThr,         2, (U, channel, I, val)) \
    C(76,  txCompClip,        sTxCompClip,        2, (U, channel, I, dB)) \
    C(77,  txEqualizer,       sTxEqualizer,       2, (U, channel, B, state)) \
    O(78,  txEqualizer,       sTxEqualizer,       2, (U, channel, IL, values), txEqualizerValues) \
    C(79,  txPA,              sTxPA,              2, (U, transmitter, B, state)) \
    C(80,  txVox,             sTxVox,             2, (U, transmitter, B, state)) \
    C(81,  txBandFilter,      sTxBandFilter,      3, (U, tranceiver, I, low, I, high)) \
    C(82,  cwSpeed,           sCwSpeed,           1, (U, wpm)) \
    C(83,  cwBreakIn,         sCwBreakIn,         1, (B, state)) \
    E(84,  cwBreakInValue,                        1, (I, value)) \
    S(84,                     sCwBreakInValue,    1, (U, value)) \
    E(85,  cwPitch,                               1, (I, value)) \
    S(85,                     sCwPitch,           1, (U, value)) \
    E(86,  cwWidth,                               1, (I, value)) \
    S(86,                     sCwWidth,           1, (U, value)) \
    E(87,  cwRamp,                                1, (I, value)) \
    S(87,                     sCwRamp,            1, (U, value)) \
    C(88,  cwKey,             sCwKey,             3, (U, transmitter, U, src, B, state)) \
    C(89,  cwPtt,             sCwPtt,             2, (U, transmitter, B, state)) \
    C(90,  cwKeyProg,         sCwKeyProg,         2, (U, transmitter, B, keyer)) \
    C(91,  cwKeyProgDashDot,  sCwKeyProgDashDot,  3, (U, transmitter, B, dash, B, dot)) \
    C(92,  txDash,            sTxDash,            2, (U, channel, B, state)) \
    C(93,  txDot,             sTxDot,             2, (U, channel, B, state)) \
    C(94,  txKeyer,           sTxKeyer,           4, (U, transmitter, U, src, B, dash, B, dot)) \
    C(95,  scEnable,          sScEnable,          1, (B, state)) \
    C(96,  scSampleRate,      sScSampleRate,      1, (D, value)) \
    C(97,  scRingBuffer,      sScRingBuffer,      1, (L, pRingBuffer)) \
    C(98,  vacEnable,         sVacEnable,         2, (U, tranceiver, B, state)) \
    C(99,  meterDbm,          sMeterDbm,          3, (U, receiver, U, channel, D, value)) \
    C(100, meterAdc,          sMeterAdc,          4, (U, receiver, U, channel, D, i, D, q)) \
    C(101, meterPower,        sMeterPower,        3, (U, transmitter, U, channel, D, value)) \
    C(102, meterSwr,          sMeterSwr,          3, (U, transmitter, U, channel, D, value)) \
    C(103, meterMic,          sMeterMic,          3, (U, transmitter, U, channel, D, value)) \
    C(104, sensorTemperature, sSensorTemperature, 1, (D, value)) \
    C(105, sensorUpit,        sSensorUpit,        1, (D, value)) \
    E(106, setSensorFan,                          1, (BU, state)) \
    S(106,                    sSensorFan,         1, (B, )) \
    C(107, deviceAdd,         sDeviceAdd,         0, ()) \
    C(108, deviceRemove,      sDeviceRemove,      0, ()) \
    C(109, deviceChanged,     sDeviceChanged,     0, ()) \
    C(110, panelBandUp,       sPanelBandUp,       1, (U, receiver)) \
    C(111, panelBandDown,     sPanelBandDown,     1, (U, receiver)) \
    C(112, panelModeUp,       sPanelModeUp,       1, (U, receiver)) \
    C(113, panelModeDown,     sPanelModeDown,     1, (U, receiver)) \
    C(114, panelFilterUp,     sPanelFilterUp,     1, (U, receiver)) \
    C(115, panelFilterDown,   sPanelFilterDown,   1, (U, receiver)) \
    C(116, panelAgcUp,        sPanelAgcUp,        1, (U, receiver)) \
    C(117, panelAgcDown,      sPanelAgcDown,      1, (U, receiver)) \
    C(118, panelPreampUp,     sPanelPreampUp,     0, ()) \
    C(119, panelPreampDown,   sPanelPreampDown,   0, ()) \
    C(120, panelStepUp,       sPanelStepUp,       1, (U, receiver)) \
    C(121, panelStepDown,     sPanelStepDown,     1, (U, receiver)) \
    C(122, panelZoomUp,       sPanelZoomUp,       1, (U, receiver)) \
    C(123, panelZoomDown,     sPanelZoomDown,     1, (U, receiver)) \
    C(124, panelPowerChange,  sPanelPowerChange,  0, ()) \
    C(125, panelVolume,       sPanelVolume,       2, (U, receiver, I, step)) \
    C(126, panelRF,           sPanelRF,           2, (U, receiver, I, step)) \
    C(127, panelMicGain,      sPanelMicGain,      2, (U, receiver, I, step)) \
    C(128, panelSqlChange,    sPanelSqlChange,    1, (U, receiver)) \
    C(129, panelSql,          sPanelSql,          2, (U, receiver, I, step)) \
    C(130, panelFilterLow,    sPanelFilterLow,    2, (U, receiver, I, step)) \
    C(131, panelFilterHigh,   sPanelFilterHigh,   2, (U, receiver, I, step)) \
    C(132, panelFilterWidth,  sPanelFilterWidth,  2, (U, receiver, I, step)) \
    C(133, panelFilterShift,  sPanelFilterShift,  2, (U, receiver, I, step)) \
    C(134, panelDrive,        sPanelDrive,        2, (U, receiver, I, step)) \
    C(135, panelIF,           sPanelIF,           2, (U, receiver, I, step)) \
    C(136, panelMuteChange,   sPanelMuteChange,   1, (U, receiver)) \
    C(137, panelPaChange,     sPanelPaChange,     1, (U, receiver)) \
    C(138, panelBinChange,    sPanelBinChange,    1, (U, receiver)) \
    C(139, panelNrChange,     sPanelNrChange,     1, (U, receiver)) \
    C(140, panelAnfChange,    sPanelAnfChange,    1, (U, receiver)) \
    C(141, panelNb1Change,    sPanelNb1Change,    1, (U, receiver)) \
    C(142, panelNb2Change,    sPanelNb2Change,    1, (U, receiver)) \
    C(143, panelVFO,          sPanelVFO,          3, (U, receiver, U, channel, I, step)) \
    C(144, panelCwSpeed,      sPanelCwSpeed,      2, (U, receiver, I, step)) \
    C(145, panelEnableVFOB,   sPanelEnableVFOB,   2, (U, receiver, B, state)) \
    C(146, panelMox,          sPanelMox,          2, (U, receiver, B, state)) \
    C(147, panelTone,         sPanelTone,         2, (U, receiver, B, state)) \
    C(148, panelWideFilter,   sPanelWideFilter,   0, ()) \
    C(149, panelRitEnable,    sPanelRitEnable,    2, (U, receiver, U, channel)) \
    C(150, panelRitValue,     sPanelRitValue,     3, (U, receiver, U, channel, I, step)) \
    C(151, panelRitFromIfValue, sPanelRitFromIfValue, 3, (U, receiver, U, channel, I, step)) \
    C(152, panelRitReset,     sPanelRitReset,     2, (U, receiver, U, channel)) \
    C(153, panelXitEnable,    sPanelXitEnable,    2, (U, receiver, U, channel)) \
    C(154, panelXitValue,     sPanelXitValue,     3, (U, receiver, U, channel, I, step)) \
    C(155, panelXitFromIfValue, sPanelXitFromIfValue, 3, (U, receiver, U, channel, I, step)) \
    C(156, panelXitReset,     sPanelXitReset,     2, (U, receiver, U, channel)) \
    C(157, panelSplitSw,      sPanelSplitSw,      1, (U, receiver)) \
    C(158, panelMoxVoicePlay, sPanelMoxVoicePlay, 1, (U, tranceiver)) \
    C(159, panelVoiceRec,     sPanelVoiceRec,     1, (U, tranceiver)) \
    C(160, catSubRX,          sCatSubRX,          2, (U, receiver, B, enable)) \
    C(161, catSplit,          sCatSplit,          2, (U, receiver, B, enable)) \
    C(162, setIqWriter,       sIqWriter,          2, (B, state, I, channel)) \
    C(163, setIqFixedFreq,    sIqFixedFreq,       2, (B, state, D, freq)) \
    C(164, voiceRec,          sVoiceRec,          2, (U, receiver, B, state)) \
    C(165, voicePlay,         sVoicePlay,         2, (U, receiver, B, state)) \
    C(167, updatePreampMode,  sUpdatePreampMode,  0, ()) \
    C(168, appRetranslate,    sAppRetranslate,    0, ()) \
    C(169, ctcssEnable,       sCtcssEnable,       2, (U, receiver, B, state)) \
    C(170, ctcssTone,         sCtcssTone,         2, (U, receiver, I, index)) \
    C(171, ctcssTxEnable,     sCtcssTxEnable,     2, (U, receiver, B, state)) \
    C(172, ctcssTxTone,       sCtcssTxTone,       2, (U, receiver, I, index)) \
    C(173, ctcssLevel,        sCtcssLevel,        1, (I, value)) \
    C(174, genTX,             sGenTX,             1, (B, state)) \
    C(175, burstToneEnable,   sBurstToneEnable,   2, (U, tranceiver, B, state)) \
    C(176, burstToneParam,    sBurstToneParam,    3, (U, tranceiver, D, freq, D, deviation)) \
    C(177, lineOutBuffers,    sLineOutBuffers,    1, (PL, list)) \
    C(178, lineOutEnable,     sLineOutEnable,     2, (U, tranceiver, B, state)) \
    C(179, lineOutSampleRate, sLineOutSampleRate, 2, (U, tranceiver, D, value)) \
    C(180, monEnableInSsbForVac, sMonEnableInSsbForVac, 1, (B, state)) \
    C(181, monEnableInSsbForVoiceRecorder, sMonEnableInSsbForVoiceRecorder, 1, (B, state)) \
    C(182, setCatAttPreAmp,   sCatAttPreAmp,      3, (U, tranceiver, B, att, B, amp)) \
    C(183, setMb1Function,    sMb1Function,       2, (U, id, B, state)) \
    C(184, setCWKeyObject,    sCWKeyObject,       1, (K, p)) \
    C(185, setTxChannels,     sTxChannels,        1, (UU, count)) \
    C(187, sensorIpit,        sSensorIpit,        1, (D, value)) \
    C(188, wfmStereo,         sWfmStereo,         2, (U, receiver, B, state)) \
    C(189, panelRxAntSwitch,  sPanelRxAntSwitch,  0, ()) \
    C(186, setSkimmerTune,    sSkimmerTune,       2, (U, receiver, D, freq))

// C++ type of each parameter code (moc reads these, so they are plain tokens).
#define QRV_TYPE_U   uint
#define QRV_TYPE_UU  uint
#define QRV_TYPE_I   int
#define QRV_TYPE_B   bool
#define QRV_TYPE_BI  bool
#define QRV_TYPE_BU  bool
#define QRV_TYPE_D   double
#define QRV_TYPE_ULL qulonglong
#define QRV_TYPE_L   long
#define QRV_TYPE_K   CwKeyControlAbstract *
#define QRV_TYPE_IL  QList<int>
#define QRV_TYPE_PL  QList<void *>

// Variant type of each parameter code in a message.
#define QRV_WIRE_U   QMetaType::UInt
#define QRV_WIRE_UU  QMetaType::UInt
#define QRV_WIRE_I   QMetaType::Int
#define QRV_WIRE_B   QMetaType::Bool
#define QRV_WIRE_BI  QMetaType::Bool
#define QRV_WIRE_BU  QMetaType::UInt
#define QRV_WIRE_D   QMetaType::Double
#define QRV_WIRE_ULL QMetaType::ULongLong
#define QRV_WIRE_L   QMetaType::ULongLong
#define QRV_WIRE_K   QMetaType::ULongLong
#define QRV_WIRE_IL  QMetaType::QVariantList
#define QRV_WIRE_PL  QMetaType::QVariantList

// QRV_MAP(M, n, (c1, n1, c2, n2, ...)) expands to M(c1, n1, 1), M(c2, n2, 2), ...
// The third argument of M is the parameter's position in the message.
#define QRV_UNWRAP(...) __VA_ARGS__
#define QRV_CALL(f, args) f args
#define QRV_MAP(M, n, args) QRV_CALL(QRV_MAP_##n, (M, QRV_UNWRAP args))
#define QRV_MAP_0(M, ...)
#define QRV_MAP_1(M, c1, n1) M(c1, n1, 1)
#define QRV_MAP_2(M, c1, n1, c2, n2) M(c1, n1, 1), M(c2, n2, 2)
#define QRV_MAP_3(M, c1, n1, c2, n2, c3, n3) M(c1, n1, 1), M(c2, n2, 2), M(c3, n3, 3)
#define QRV_MAP_4(M, c1, n1, c2, n2, c3, n3, c4, n4) \
    M(c1, n1, 1), M(c2, n2, 2), M(c3, n3, 3), M(c4, n4, 4)

#define QRV_STR(x) QRV_STR_(x)
#define QRV_STR_(x) #x
#define QRV_NOTHING(...)

// Declarations inside qrvCommand.
#define QRV_PARAM_DECL(code, name, pos) QRV_TYPE_##code name
#define QRV_DECLARE_C_SLOT(id, slot, signal, n, args) void slot(QRV_MAP(QRV_PARAM_DECL, n, args));
#define QRV_DECLARE_O_SLOT(id, slot, signal, n, args, name) QRV_DECLARE_C_SLOT(id, slot, signal, n, args)
#define QRV_DECLARE_E_SLOT(id, slot, n, args) void slot(QRV_MAP(QRV_PARAM_DECL, n, args));
#define QRV_DECLARE_F_SLOT(id, slot, signal, value) void slot();
#define QRV_DECLARE_C_SIGNAL(id, slot, signal, n, args) void signal(QRV_MAP(QRV_PARAM_DECL, n, args));
#define QRV_DECLARE_O_SIGNAL(id, slot, signal, n, args, name) QRV_DECLARE_C_SIGNAL(id, slot, signal, n, args)
#define QRV_DECLARE_S_SIGNAL(id, signal, n, args) void signal(QRV_MAP(QRV_PARAM_DECL, n, args));
#define QRV_DECLARE_F_SIGNAL(id, slot, signal, value) void signal();
// clang-format on

namespace qrv {

// Number of command ids: 0 to commandCount - 1.
constexpr int commandCount = 190;

// Command ids by the encoder that sends them: Id::panelBandUp == 110. The second
// id of an overloaded encoder goes by its O row's name (Id::rxNFBand == 47);
// id 59, which has a decoded signal only, and the unused id 53 have no name.
// clang-format off
#define QRV_ID_C(id, slot, signal, n, args) slot = id,
#define QRV_ID_E(id, slot, n, args) slot = id,
#define QRV_ID_O(id, slot, signal, n, args, name) name = id,
enum class Id : int {
    QRV_COMMANDS(QRV_ID_C, QRV_ID_E, QRV_NOTHING, QRV_NOTHING, QRV_ID_O)
};
#undef QRV_ID_C
#undef QRV_ID_E
#undef QRV_ID_O
// clang-format on

constexpr int maxParams = 4;

// When a decoded signal is emitted: always, or only when the message's flag
// (element 1, as bool) is true or false.
enum class Guard : unsigned char { Always, IfTrue, IfFalse };

struct Param
{
    const char *type; // C++ type as declared ("uint", "QList<int>")
    const char *name; // parameter name, may be empty
};

// One encoder slot or one decoded signal of qrvCommand.
struct Method
{
    int id;
    const char *name;
    int argc;
    Param params[maxParams];
    int wireCount; // elements after the id that the encoder sends
    int wire[maxParams]; // their QMetaType ids
    Guard guard; // signals only
};

// clang-format off
#define QRV_PARAM_INFO(code, name, pos) Param{QRV_STR(QRV_TYPE_##code), #name}
#define QRV_WIRE_INFO(code, name, pos) QRV_WIRE_##code
#define QRV_GUARD_true Guard::IfTrue
#define QRV_GUARD_false Guard::IfFalse

#define QRV_INFO_C_SLOT(id, slot, signal, n, args) \
    Method{id, #slot, n, {QRV_MAP(QRV_PARAM_INFO, n, args)}, n, {QRV_MAP(QRV_WIRE_INFO, n, args)}, Guard::Always},
#define QRV_INFO_E_SLOT(id, slot, n, args) QRV_INFO_C_SLOT(id, slot, -, n, args)
#define QRV_INFO_O_SLOT(id, slot, signal, n, args, name) QRV_INFO_C_SLOT(id, slot, signal, n, args)
#define QRV_INFO_F_SLOT(id, slot, signal, value) \
    Method{id, #slot, 0, {}, 1, {QMetaType::Bool}, Guard::Always},
#define QRV_INFO_C_SIGNAL(id, slot, signal, n, args) \
    Method{id, #signal, n, {QRV_MAP(QRV_PARAM_INFO, n, args)}, 0, {}, Guard::Always},
#define QRV_INFO_S_SIGNAL(id, signal, n, args) QRV_INFO_C_SIGNAL(id, -, signal, n, args)
#define QRV_INFO_O_SIGNAL(id, slot, signal, n, args, name) QRV_INFO_C_SIGNAL(id, slot, signal, n, args)
#define QRV_INFO_F_SIGNAL(id, slot, signal, value) \
    Method{id, #signal, 0, {}, 0, {}, QRV_GUARD_##value},

// Every encoder slot, in declaration order (setCommand is not among them).
inline constexpr Method encoders[] = {
    QRV_COMMANDS(QRV_INFO_C_SLOT, QRV_INFO_E_SLOT, QRV_NOTHING, QRV_INFO_F_SLOT, QRV_INFO_O_SLOT)
};
// Every decoded signal, in declaration order (sCommand is not among them).
inline constexpr Method decodedSignals[] = {
    QRV_COMMANDS(QRV_INFO_C_SIGNAL, QRV_NOTHING, QRV_INFO_S_SIGNAL, QRV_INFO_F_SIGNAL, QRV_INFO_O_SIGNAL)
};
// clang-format on

constexpr int encoderCount = int(std::size(encoders));
constexpr int signalCount = int(std::size(decodedSignals));

// "panelVFO(uint,uint,int)": the method's normalised signature, as the
// meta-object knows it. With names: "panelVFO(uint receiver, uint channel, int step)".
QByteArray signature(const Method &method, bool withNames = false);

// The encoder that sends messages of `id` with `elementCount` elements after the
// id, or null. Where several do (open(bool), open() and close()), the first one.
const Method *encoderFor(int id, int elementCount);

// One message as a readable line, such as "panelBandUp(receiver=0)", for logs.
// Messages that the dispatcher drops are described as such.
QString describe(const QVariant &message);

// The panel's change-over requests, by encoder: the panel does not know the
// state these switch (transmit, tune, the sub-receiver), so it always sends the
// flag false and the host changes the state over. Logs show them as such.
inline constexpr const char *changeOverRequests[] = {"panelEnableVFOB", "panelMox", "panelTone"};

namespace detail {
constexpr bool sameName(const char *a, const char *b)
{
    while (*a && *a == *b) {
        ++a;
        ++b;
    }
    return *a == *b;
}

// Every change-over request is an encoder whose last parameter is a bool.
constexpr bool changeOverRequestsCarryAFlag()
{
    for (const char *name : changeOverRequests) {
        bool found = false;
        for (const Method &m : encoders)
            found = found
                || (sameName(m.name, name) && m.argc > 0
                    && sameName(m.params[m.argc - 1].type, "bool"));
        if (!found)
            return false;
    }
    return true;
}
static_assert(changeOverRequestsCarryAFlag(), "a change-over request needs its bool flag");
} // namespace detail

constexpr bool isChangeOverRequest(const Method &method)
{
    for (const char *name : changeOverRequests) {
        if (detail::sameName(method.name, name))
            return true;
    }
    return false;
}

} // namespace qrv
