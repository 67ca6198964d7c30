#include "graph/texmap_writers.h"

#include "graph/texmap_members.h"

namespace orvane {

namespace {

const ParamRow kMixRows[] = {{u"mixAmount", u"mix_amount"},
                             {u"useCurve", u"use_curve"},
                             {u"upper", u"curve_upper"},
                             {u"lower", u"curve_lower"}};

const ParamRow kCellularRows[] = {{u"cellColor", u"cell_color"},
                                  {u"cellVariation", u"cell_variation"},
                                  {u"divisionColor1", u"division_color1"},
                                  {u"divisionColor2", u"division_color2"},
                                  {u"cellType", u"cell_type"},
                                  {u"fractal", u"fractal"},
                                  {u"size", u"size"},
                                  {u"spread", u"spread"},
                                  {u"iterations", u"iterations"},
                                  {u"adaptive", u"adaptive"},
                                  {u"bumpSmoothing", u"bump_smoothing"},
                                  {u"roughness", u"roughness"},
                                  {u"lowThresh", u"threshold_low"},
                                  {u"midThresh", u"threshold_mid"},
                                  {u"highThresh", u"threshold_high"}};

const ParamRow kCheckerRows[] = {{u"color1", u"color1"},
                                 {u"color2", u"color2"},
                                 {u"Soften", u"soften"},
                                 {u"map1Enabled", u"map1_enabled"},
                                 {u"map2Enabled", u"map2_enabled"}};

const ParamRow kColorCorrectionRows[] = {{u"color", u"color"},
                                         {u"rewireMode", u"rewire_mode"},
                                         {u"rewireR", u"rewire_r"},
                                         {u"rewireG", u"rewire_g"},
                                         {u"rewireB", u"rewire_b"},
                                         {u"rewireA", u"rewire_a"},
                                         {u"hueShift", u"hue_shift"},
                                         {u"saturation", u"saturation"},
                                         {u"tint", u"hue_tint"},
                                         {u"tintStrength", u"hue_tint_strength"},
                                         {u"hueTint", u"hue_tint"},
                                         {u"hueTintStrength", u"hue_tint_strength"},
                                         {u"lightnessMode", u"lightness_mode"},
                                         {u"enableR", u"enable_r"},
                                         {u"enableG", u"enable_g"},
                                         {u"enableB", u"enable_b"},
                                         {u"brightness", u"brightness"},
                                         {u"contrast", u"contrast"},
                                         {u"gainRGB", u"gain_rgb"},
                                         {u"gainR", u"gain_r"},
                                         {u"gainG", u"gain_g"},
                                         {u"gainB", u"gain_b"},
                                         {u"gammaRGB", u"gamma_rgb"},
                                         {u"gammaR", u"gamma_r"},
                                         {u"gammaG", u"gamma_g"},
                                         {u"gammaB", u"gamma_b"},
                                         {u"pivotRGB", u"pivot_rgb"},
                                         {u"pivotR", u"pivot_r"},
                                         {u"pivotG", u"pivot_g"},
                                         {u"pivotB", u"pivot_b"},
                                         {u"liftRGB", u"lift_rgb"},
                                         {u"liftR", u"lift_r"},
                                         {u"liftG", u"lift_g"},
                                         {u"liftB", u"lift_b"},
                                         {u"printerLights", u"printer_lights"},
                                         {u"exposureMode", u"exposure_mode"}};

const ParamRow kColorMapRows[] = {{u"solidcolor", u"solid_color"},
                                  {u"color", u"solid_color"},
                                  {u"mapEnabled", u"map_enabled"},
                                  {u"gamma", u"gamma"},
                                  {u"gain", u"gain"},
                                  {u"reverseGamma", u"reverse_gamma"}};

const ParamRow kCompositeMapRows[] = {{u"blendMode", u"num_layers", &kCompositeMapLayers}};
const ParamRow kCompositeMtlRows[] = {{u"amount", u"num_layers", &kCompositeMtlLayers}};

const ParamRow kCoronaAoRows[] = {{u"colorOccluded", u"occluded_color"},
                                  {u"colorUnoccluded", u"unoccluded_color"},
                                  {u"maxDistance", u"max_distance"},
                                  {u"quality", u"samples"},
                                  {u"texmapOccluded", u"texmap_occluded_on", &kSlotSwitch},
                                  {u"texmapUnoccluded", u"texmap_unoccluded_on", &kSlotSwitch}};

const ParamRow kCoronaBlendMtlRows[] = {{u"mixAmount", u"mix_amount"}, {u"additive", u"additive"}};
const ParamRow kCoronaBumpConverterRows[] = {{u"strength", u"strength"}, {u"blur", u"blur"}};
const ParamRow kCoronaBumpRows[] = {{u"strength", u"strength"}, {u"bumpType", u"bump_type"}};

const ParamRow kCoronaColorCorrectRows[] = {{u"brightness", u"brightness"},
                                            {u"contrast", u"contrast"},
                                            {u"saturation", u"saturation"},
                                            {u"gamma", u"gamma"},
                                            {u"temperature", u"temperature"},
                                            {u"greenMagentaTint", u"green_magenta_tint"},
                                            {u"invert", u"invert_colors"},
                                            {u"exposure", u"exposure"},
                                            {u"tint", u"tint"},
                                            {u"lutEnable", u"lut_enabled"},
                                            {u"lutOpacity", u"lut_opacity"},
                                            {u"curveEnabled", u"curves_enabled"},
                                            {u"additionalOutputs", u"additional_outputs"}};

// Every way the map can hold its colour, with the method that says which one it uses.
const ParamRow kCoronaColorRows[] = {{u"method", u"method"},      {u"color", u"color"},
                                     {u"colorHdr", u"color_hdr"}, {u"multiplier", u"multiplier"},
                                     {u"hexColor", u"hex_color"}, {u"colorSpace", u"color_space"}};

const ParamRow kCoronaCurvatureRows[] = {{u"samplesCount", u"samples"},
                                         {u"rayDirectionality", u"ray_directionality"},
                                         {u"distanceMultiplier", u"distance_multiplier"},
                                         {u"baseColor", u"base_color"},
                                         {u"convexColor", u"convex_color"},
                                         {u"concaveColor", u"concave_color"},
                                         {u"colorSpread", u"color_spread"},
                                         {u"affectedBump", u"affected_bump"},
                                         {u"baseTexmapOn", u"base_map_on"},
                                         {u"convexTexmapOn", u"convex_map_on"},
                                         {u"concaveTexmapOn", u"concave_map_on"},
                                         {u"distanceTexmapOn", u"distance_map_on"}};

const ParamRow kCoronaFrontBackRows[] = {{u"frontColor", u"frontColor"},
                                         {u"backColor", u"backColor"},
                                         {u"frontTexmapOn", u"front_on"},
                                         {u"backTexmapOn", u"back_on"}};

const ParamRow kCoronaLayeredRows[] = {{u"amounts", u"layer_count", &kCoronaLayeredArrays}};

const ParamRow kCoronaLightMtlRows[] = {
    {u"color", u"color"}, {u"intensity", u"intensity"}, {u"emitOnBothSides", u"emit_both_sides"}};

const ParamRow kUvwRandomizerRows[] = {{u"seed", u"seed"},
                                       {u"offset_U_from", u"offset_u_from"},
                                       {u"offset_U_to", u"offset_u_to"},
                                       {u"offset_U_step", u"offset_u_step"},
                                       {u"offset_V_from", u"offset_v_from"},
                                       {u"offset_V_to", u"offset_v_to"},
                                       {u"offset_V_step", u"offset_v_step"},
                                       {u"rotation_W_from", u"rotation_w_from"},
                                       {u"rotation_W_to", u"rotation_w_to"},
                                       {u"rotation_W_step", u"rotation_w_step"},
                                       {u"scale_U_from", u"scale_u_from"},
                                       {u"scale_U_to", u"scale_u_to"},
                                       {u"scale_U_step", u"scale_u_step"},
                                       {u"scale_V_from", u"scale_v_from"},
                                       {u"scale_V_to", u"scale_v_to"},
                                       {u"scale_V_step", u"scale_v_step"},
                                       {u"lockScale", u"lock_scale"},
                                       {u"tilingCount", u"tiling_count"},
                                       {u"tilingStochastic", u"tiling_stochastic"},
                                       {u"tilingBlending", u"tiling_blending"},
                                       {u"randomizeInstance", u"rnd_instance"},
                                       {u"randomizePrimitive", u"rnd_primitive"},
                                       {u"randomizeSubPrimitive", u"rnd_subprimitive"},
                                       {u"randomizePolygon", u"rnd_polygon"},
                                       {u"randomizeMeshElement", u"rnd_mesh_element"},
                                       {u"randomizeMaterialId", u"rnd_material_id"}};

const ParamRow kCoronaMixRows[] = {{u"mixOperation", u"mix_operation"},
                                   {u"mixAmount", u"mix_amount"},
                                   {u"mixInSRgb", u"mix_in_srgb"},
                                   {u"colorTop", u"color_top"},
                                   {u"colorBottom", u"color_bottom"},
                                   {u"color1", u"color1"},
                                   {u"color2", u"color2"},
                                   {u"multiplierTop", u"mult_top"},
                                   {u"multiplierBottom", u"mult_bottom"},
                                   {u"offsetTop", u"offset_top"},
                                   {u"offsetBottom", u"offset_bottom"},
                                   {u"texmapTopOn", u"texmap_top_on"},
                                   {u"texmapBottomOn", u"texmap_bottom_on"},
                                   {u"texmapMixOn", u"texmap_mix_on"}};

const ParamRow kCoronaMultimapRows[] = {{u"mixAmount", u"mix_amount"},
                                        {u"seed", u"seed"},
                                        {u"hueRandom", u"hue_random"},
                                        {u"saturationRandom", u"saturation_random"},
                                        {u"gammaRandom", u"gamma_random"},
                                        {u"blurMultiplier", u"blur_multiplier"},
                                        {u"additionalOutputs", u"additional_outputs"},
                                        {u"items", u"items"},
                                        {u"items", u"item_count", &kCoronaMultimapItems}};

const ParamRow kCoronaNormalRows[] = {
    {u"multiplier", u"multiplier"},
    {u"flipred", u"flip_red"},
    {u"flipgreen", u"flip_green"},
    {u"swapRedGreen", u"swap_rg"},
    {u"addGamma", u"add_gamma"},
    {u"additionalBumpOn", u"additional_bump_on"},
    {u"additionalBumpStrength", u"additional_bump_strength"},
    {u"multiplier", u"strength"}};  // the converter's name for the same value

const ParamRow kCoronaRaySwitchRows[] = {
    {u"directMtlOn", u"direct_on"},
    {u"giMtlOn", u"gi_on"},
    {u"reflectMtlOn", u"reflect_on"},
    {u"refractMtlOn", u"refract_on"},
    {u"viewportSource", u"viewport_source"},
    {u"displacementSource", u"displacement_source"},
    {u"viewportSource", u"viewport_source_slot", &kRaySwitchSources}};

const ParamRow kCoronaRoundEdgeRows[] = {
    {u"radius", u"radius"}, {u"mode", u"mode"}, {u"samples", u"samples"}};
const ParamRow kCoronaSelectMapRows[] = {{u"selected", u"selected"}, {u"mapCount", u"map_count"}};
const ParamRow kCoronaSelectMtlRows[] = {{u"selected", u"selected"}, {u"mtlCount", u"mtl_count"}};

const ParamRow kCoronaSkinRows[] = {{u"skinColor", u"skin_color"},
                                    {u"skinLevel", u"skin_level"},
                                    {u"sssAmount", u"sss_amount"},
                                    {u"sssRadiusScale", u"sss_radius_scale"},
                                    {u"sssMode", u"sss_mode"},
                                    {u"sss1Color", u"sss1_color"},
                                    {u"sss1Radius", u"sss1_radius"},
                                    {u"sss1Weight", u"sss1_weight"},
                                    {u"sss2Color", u"sss2_color"},
                                    {u"sss2Radius", u"sss2_radius"},
                                    {u"sss2Weight", u"sss2_weight"},
                                    {u"sss3Color", u"sss3_color"},
                                    {u"sss3Radius", u"sss3_radius"},
                                    {u"sss3Weight", u"sss3_weight"},
                                    {u"reflection1Color", u"reflect1_color"},
                                    {u"reflection1Level", u"reflect1_level"},
                                    {u"reflection1Glossiness", u"reflect1_glossiness"},
                                    {u"reflection1Ior", u"reflect1_ior"},
                                    {u"reflection2Color", u"reflect2_color"},
                                    {u"reflection2Level", u"reflect2_level"},
                                    {u"reflection2Glossiness", u"reflect2_glossiness"},
                                    {u"reflection2Ior", u"reflect2_ior"},
                                    {u"opacityColor", u"opacity_color"},
                                    {u"opacityLevel", u"opacity_level"},
                                    {u"mapamountBump", u"bump_amount"},
                                    {u"displaceMinimum", u"displacement_min"},
                                    {u"displaceMaximum", u"displacement_max"},
                                    {u"displaceWaterLevel", u"displacement_water_level"},
                                    {u"displaceWaterLevelOn", u"displacement_water_level_on"}};

const ParamRow kCoronaTileRows[] = {{u"tilePattern", u"tile_pattern"},
                                    {u"tileColor", u"tile_color"},
                                    {u"gapColor", u"gap_color"},
                                    {u"tileWidth", u"tile_width"},
                                    {u"tileHeight", u"tile_height"},
                                    {u"tileWidthVariance", u"tile_width_variance"},
                                    {u"tileHeightVariance", u"tile_height_variance"},
                                    {u"gapThickness", u"gap_thickness"},
                                    {u"cornerRadius", u"corner_radius"},
                                    {u"tileTexmapOn", u"tile_texmap_on"},
                                    {u"gapTexmapOn", u"gap_texmap_on"}};

const ParamRow kCoronaToneMapRows[] = {{u"exposureAffected", u"exposure_affected"},
                                       {u"lutAffected", u"lut_affected"},
                                       {u"toneMappingAffected", u"tone_mapping_affected"}};

const ParamRow kCoronaTriplanarRows[] = {{u"useMapXForAll", u"use_map_x_for_all"},
                                         {u"useXForAll", u"use_map_x_for_all"},
                                         {u"blendingAmount", u"blend_amount"},
                                         {u"blending", u"blend_amount"},
                                         {u"uvwScale", u"uvwScale"},
                                         {u"uvwOffsetX", u"offset_x"},
                                         {u"uvwOffsetY", u"offset_y"},
                                         {u"uvwOffsetZ", u"offset_z"},
                                         {u"uvwRotateX", u"rotate_x"},
                                         {u"uvwRotateY", u"rotate_y"},
                                         {u"uvwRotateZ", u"rotate_z"},
                                         {u"mappingSpace", u"mapping_space"},
                                         {u"uvwScale", u"scale"}};

const ParamRow kCoronaWireRows[] = {{u"baseColor", u"base_color"},
                                    {u"edgeColor", u"edge_color"},
                                    {u"edgeWidthPixels", u"edge_width_pixels"},
                                    {u"edgeWidthWorld", u"edge_width_world"},
                                    {u"widthMode", u"width_mode"},
                                    {u"alledges", u"all_edges"},
                                    {u"edgesOn", u"edges_on"},
                                    {u"verticesOn", u"vertices_on"},
                                    {u"baseMapOn", u"base_map_on"}};

const ParamRow kDoubleSidedRows[] = {{u"translucency", u"translucency"},
                                     {u"map1Enabled", u"map1_enabled"},
                                     {u"map2Enabled", u"map2_enabled"}};

const ParamRow kFalloffRows[] = {{u"type", u"falloff_type"},      {u"color1", u"color1"},
                                 {u"color2", u"color2"},          {u"direction", u"direction"},
                                 {u"map1Amount", u"map1_amount"}, {u"map2Amount", u"map2_amount"},
                                 {u"mixCurve", u"mix_curve"}};

const ParamRow kScatterColorRows[] = {{u"mapbase", u"map_base_on"},
                                      {u"colorbase", u"color_base"},
                                      {u"mapidmode", u"map_id_mode"},
                                      {u"tintvariation", u"tint_variation"},
                                      {u"tintcolor1", u"tint_color1"},
                                      {u"tintcolor2", u"tint_color2"},
                                      {u"tintmode", u"tint_mode"},
                                      {u"override", u"override"},
                                      {u"maponlist", u"map_count", &kScatterMapItems}};

const ParamRow kGltfRows[] = {{u"baseColor", u"base_color"},
                              {u"metalness", u"metalness"},
                              {u"roughness", u"roughness"},
                              {u"emissionColor", u"emit_color"},
                              {u"alphaMode", u"alpha_mode"},
                              {u"alphaCutoff", u"alpha_cutoff"},
                              {u"normal", u"normal_amount"},
                              {u"ambientOcclusion", u"ao_amount"},
                              {u"DoubleSided", u"two_sided"},
                              {u"unlit", u"unlit"},
                              {u"enableClearCoat", u"coat_enabled"},
                              {u"clearcoat", u"coat_amount"},
                              {u"clearcoatRoughness", u"coat_roughness"},
                              {u"enableSheen", u"sheen_enabled"}};

const ParamRow kGradientRows[] = {{u"gradientType", u"gradient_type"},
                                  {u"color1", u"color1"},
                                  {u"color2", u"color2"},
                                  {u"color3", u"color3"},
                                  {u"color2Pos", u"color2_pos"},
                                  {u"noiseAmount", u"noise_amount"},
                                  {u"noiseSize", u"noise_size"},
                                  {u"", u"keys", &kGradientProbe}};

const ParamRow kGradientRampRows[] = {{u"", u"keys", &kGradientProbe}};
const ParamRow kMapToMaterialRows[] = {{u"shader_on", u"shader_on"}};
const ParamRow kMaskRows[] = {{u"mapEnabled", u"map_enabled"},
                              {u"maskEnabled", u"mask_enabled"},
                              {u"maskInverted", u"mask_inverted"}};
const ParamRow kOutputSelectorRows[] = {{u"outputChannelIndex", u"output_channel_index"},
                                        {u"numInputs", u"num_inputs"}};
const ParamRow kMaterialSwitcherRows[] = {{u"selection", u"selection"}, {u"nummats", u"num_mats"}};
const ParamRow kMorpherRows[] = {{u"", u"base_mtl_index", &kMorpherBase}};
const ParamRow kMultiTextureRows[] = {{u"rnd_by", u"rnd_by"},
                                      {u"seed", u"seed"},
                                      {u"submap_on", u"num_textures", &kMultiTextureSwitches}};

const ParamRow kNoiseRows[] = {{u"type", u"noise_type"},
                               {u"size", u"size"},
                               {u"phase", u"phase"},
                               {u"levels", u"levels"},
                               {u"lowThreshold", u"low_threshold"},
                               {u"highThreshold", u"high_threshold"},
                               {u"color1", u"color1"},
                               {u"color2", u"color2"}};

const ParamRow kNormalBumpRows[] = {{u"mult_spin", u"normal_multiplier"},
                                    {u"bump_spin", u"bump_multiplier"},
                                    {u"flipred", u"flip_red"},
                                    {u"flipgreen", u"flip_green"},
                                    {u"swap_rg", u"swap_rg"},
                                    {u"method", u"normal_method"}};

const ParamRow kOutputRows[] = {{u"map1Enabled", u"map_enabled"}};

const ParamRow kPbrRows[] = {{u"baseColor", u"base_color"},
                             {u"metalness", u"metalness"},
                             {u"roughness", u"roughness"},
                             {u"useGlossiness", u"use_glossiness"},
                             {u"specular", u"specular_color"},
                             {u"glossiness", u"glossiness"},
                             {u"emit_color", u"emit_color"},
                             {u"bump_map_amt", u"bump_amount"},
                             {u"displacement_amt", u"displacement_amount"},
                             {u"normal_flip_red", u"normal_flip_red"},
                             {u"normal_flip_green", u"normal_flip_green"},
                             {u"ao_affects_diffuse", u"ao_affects_diffuse"}};

const ParamRow kTwoColorRows[] = {{u"color1", u"color1"},
                                  {u"color2", u"color2"},
                                  {u"map1on", u"map1_enabled"},
                                  {u"map2on", u"map2_enabled"},
                                  {u"map1Enabled", u"map1_enabled"},
                                  {u"map2Enabled", u"map2_enabled"},
                                  {u"size", u"size"},
                                  {u"iterations", u"iterations"},
                                  {u"threshold", u"threshold"},
                                  {u"thickness", u"thickness"},
                                  {u"strength", u"strength"},
                                  {u"exponent", u"exponent"},
                                  {u"phase", u"phase"},
                                  {u"width", u"width"},
                                  {u"level", u"level"},
                                  {u"saturation1", u"saturation1"},
                                  {u"saturation2", u"saturation2"}};

const ParamRow kRgbMultiplyRows[] = {{u"color1", u"color1_value"},
                                     {u"color2", u"color2_value"},
                                     {u"map1Enabled", u"map1_enabled"},
                                     {u"map2Enabled", u"map2_enabled"}};
const ParamRow kRgbTintRows[] = {{u"tint_red", u"tint_red"},
                                 {u"green", u"tint_green"},
                                 {u"blue", u"tint_blue"},
                                 {u"map1Enabled", u"map1_enabled"}};
const ParamRow kShellMtlRows[] = {{u"renderMtlIndex", u"render_mtl_index"},
                                  {u"viewportMtlIndex", u"viewport_mtl_index"}};
const ParamRow kShellacRows[] = {{u"shellacColorBlend", u"shellac_color_blend"}};
const ParamRow kTopBottomRows[] = {{u"position", u"position"},
                                   {u"Blend", u"blend"},
                                   {u"Coordinates", u"coordinates"},
                                   {u"map1Enabled", u"map1_enabled"},
                                   {u"map2Enabled", u"map2_enabled"}};

const ParamRow kVRay2SidedRows[] = {{u"translucency", u"translucency"},
                                    {u"backMtlOn", u"back_mtl_on"},
                                    {u"force1SidedSubMtls", u"force_1sided"},
                                    {u"mult_by_front_diffuse", u"mult_by_front_diffuse"},
                                    {u"texmap_translucency_multiplier", u"amt_translucency"}};

const ParamRow kVRayAlSurfaceRows[] = {{u"diffuse_color", u"diffuse_color"},
                                       {u"diffuse_strength", u"diffuse_strength"},
                                       {u"opacity", u"opacity_color"},
                                       {u"reflect1_color", u"reflect1_color"},
                                       {u"reflect1_strength", u"reflect1_strength"},
                                       {u"reflect1_roughness", u"reflect1_roughness"},
                                       {u"reflect1_ior", u"reflect1_ior"},
                                       {u"reflect2_color", u"reflect2_color"},
                                       {u"reflect2_strength", u"reflect2_strength"},
                                       {u"reflect2_roughness", u"reflect2_roughness"},
                                       {u"reflect2_ior", u"reflect2_ior"},
                                       {u"sss_mix", u"sss_mix"},
                                       {u"sss_mode", u"sss_mode"},
                                       {u"sss_density_scale", u"sss_density_scale"},
                                       {u"sss1_color", u"sss1_color"},
                                       {u"sss1_weight", u"sss1_weight"},
                                       {u"sss1_radius", u"sss1_radius"},
                                       {u"sss2_color", u"sss2_color"},
                                       {u"sss2_weight", u"sss2_weight"},
                                       {u"sss2_radius", u"sss2_radius"},
                                       {u"sss3_color", u"sss3_color"},
                                       {u"sss3_weight", u"sss3_weight"},
                                       {u"sss3_radius", u"sss3_radius"},
                                       {u"bump_texture_multiplier", u"bump_amount"}};

const ParamRow kVRayBlendMtlRows[] = {{u"additiveMode", u"additive_mode"},
                                      {u"additiveDispl", u"additive_displacement"}};

const ParamRow kVRayCarPaintRows[] = {
    {u"base_color", u"base_color"},
    {u"base_reflection", u"base_reflection"},
    {u"base_glossiness", u"base_glossiness"},
    {u"flake_color", u"flake_color"},
    {u"flake_glossiness", u"flake_glossiness"},
    {u"flake_orientation", u"flake_orientation"},
    {u"flake_density", u"flake_density"},
    {u"flake_scale", u"flake_scale"},
    {u"flake_size", u"flake_size"},
    {u"coat_color", u"coat_color"},
    {u"coat_strength", u"coat_strength"},
    {u"coat_glossiness", u"coat_glossiness"},
    {u"double_sided", u"double_sided"},
    {u"texmap_base_color_multiplier", u"amt_base_color"},
    {u"texmap_base_reflection_multiplier", u"amt_base_reflection"},
    {u"texmap_base_glossiness_multiplier", u"amt_base_glossiness"},
    {u"texmap_base_bump_multiplier", u"amt_bump"}};

const ParamRow kVRayColorRows[] = {
    {u"color", u"color"},           {u"rgb_multiplier", u"multiplier"},
    {u"alpha", u"alpha"},           {u"color_gamma", u"color_gamma"},
    {u"color_mode", u"color_mode"}, {u"temperature", u"temperature"}};
const ParamRow kVRayCompTexRows[] = {{u"operator", u"operator_raw"},
                                     {u"multiplier", u"multiplier"}};

const ParamRow kVRayDirtRows[] = {{u"radius", u"radius"},
                                  {u"occluded_color", u"occluded_color"},
                                  {u"unoccluded_color", u"unoccluded_color"},
                                  {u"distribution", u"distribution"},
                                  {u"falloff", u"falloff"},
                                  {u"mode", u"mode"},
                                  {u"thin_mode", u"thin_mode"},
                                  {u"ignore_self_occlusion", u"ignore_self_occlusion"},
                                  {u"double_sided", u"double_sided"},
                                  {u"subdivs", u"subdivs"},
                                  {u"texmap_radius_multiplier", u"amt_radius"}};

const ParamRow kVRayEdgesRows[] = {{u"thickness", u"thickness"},
                                   {u"pixelWidth", u"pixel_width"},
                                   {u"edgesColor", u"edges_color"},
                                   {u"widthType", u"width_type"},
                                   {u"HiddenEdges", u"hidden_edges"},
                                   {u"roundedCorners_mode", u"rounded_corners_mode"},
                                   {u"roundedCorners_radius", u"rounded_corners_radius"},
                                   {u"texmap_thickness_multiplier", u"amt_thickness"}};

const ParamRow kVRayFastSssRows[] = {{u"scale", u"scale"},
                                     {u"overall_color", u"overall_color"},
                                     {u"diffuse_color", u"diffuse_color"},
                                     {u"diffuse_amount", u"diffuse_amount"},
                                     {u"sub_surface_color", u"sss_color"},
                                     {u"scatter_color", u"scatter_color"},
                                     {u"scatter_radius", u"scatter_radius"},
                                     {u"phase_function", u"phase_function"},
                                     {u"specular_color", u"specular_color"},
                                     {u"specular_amount", u"specular_amount"},
                                     {u"specular_glossiness", u"specular_glossiness"},
                                     {u"color_mode", u"color_mode"},
                                     {u"single_scatter", u"single_scatter"},
                                     {u"multiple_scattering", u"multiple_scattering"},
                                     {u"front_lighting", u"front_lighting"},
                                     {u"back_lighting", u"back_lighting"},
                                     {u"max_distance", u"max_distance"}};

const ParamRow kVRayLightMtlRows[] = {{u"color", u"color"},
                                      {u"multiplier", u"multiplier"},
                                      {u"twoSided", u"two_sided"},
                                      {u"compensate_exposure", u"compensate_exposure"},
                                      {u"opacity_multiplyColor", u"opacity_multiply_color"},
                                      {u"displacement_multiplier", u"displacement_multiplier"}};

const ParamRow kVRayMultiSubRows[] = {{u"from_id", u"from_id"},
                                      {u"seed", u"seed"},
                                      {u"texmap_num", u"texmap_num"},
                                      {u"blend_color_and_tex", u"blend_color_and_tex"},
                                      {u"loop_texmaps", u"loop_texmaps"},
                                      {u"default_color", u"default_color"},
                                      {u"default_texmap_on", u"default_texmap_on"},
                                      {u"default_texmap_mult", u"default_texmap_mult"},
                                      {u"from_id", u"random_by", &kVRayMultiSubSlots}};

const ParamRow kVRayNormalRows[] = {{u"normal_map_multiplier", u"normal_multiplier"},
                                    {u"bump_map_multiplier", u"bump_multiplier"},
                                    {u"flip_red", u"flip_red"},
                                    {u"flip_green", u"flip_green"},
                                    {u"swap_red_and_green", u"swap_rg"},
                                    {u"map_channel", u"uvw_channel"},
                                    {u"map_rotation", u"map_rotation"},
                                    {u"apply_gamma", u"apply_gamma"},
                                    {u"blue2Z_mapping_method", u"blue2z_method"}};

const ParamRow kVRayFlakesRows[] = {{u"enable_flakes", u"enable_flakes"},
                                    {u"num_flakes", u"num_flakes"},
                                    {u"hilight_glossiness", u"hilight_glossiness"},
                                    {u"reflection_filter", u"reflection_filter"},
                                    {u"flake_scale", u"flake_scale"},
                                    {u"brdf_type", u"brdf_type"},
                                    {u"colored_flakes", u"colored_flakes"},
                                    {u"saturation", u"saturation"},
                                    {u"lightness", u"lightness"},
                                    {u"blur_angle", u"blur_angle"},
                                    {u"white_average", u"white_average"}};

const ParamRow kXRefRows[] = {{u"enableOverride", u"enable_override"},
                              {u"unresolved", u"unresolved"},
                              {u"srcFileName", u"src_file_name"},
                              {u"srcItemName", u"src_item_name"}};

}  // namespace

const WriterTable kMixWriter{u"Mix", kMixRows};
const WriterTable kCellularWriter{u"Cellular", kCellularRows};
const WriterTable kCheckerWriter{u"Checker", kCheckerRows};
const WriterTable kColorCorrectionWriter{u"Color Correction", kColorCorrectionRows};
const WriterTable kColorMapWriter{u"Color Map", kColorMapRows};
const WriterTable kCompositeMapWriter{u"Composite map", kCompositeMapRows};
const WriterTable kCompositeMtlWriter{u"Composite material", kCompositeMtlRows};
const WriterTable kCoronaAoWriter{u"Corona AO", kCoronaAoRows};
const WriterTable kCoronaBlendMtlWriter{u"Corona blend material", kCoronaBlendMtlRows};
const WriterTable kCoronaBumpConverterWriter{u"Corona bump converter", kCoronaBumpConverterRows};
const WriterTable kCoronaBumpWriter{u"Corona bump", kCoronaBumpRows};
const WriterTable kCoronaColorCorrectWriter{u"Corona colour correct", kCoronaColorCorrectRows};
const WriterTable kCoronaColorWriter{u"Corona colour", kCoronaColorRows};
const WriterTable kCoronaCurvatureWriter{u"Corona curvature", kCoronaCurvatureRows};
const WriterTable kCoronaFrontBackWriter{u"Corona front/back", kCoronaFrontBackRows};
const WriterTable kCoronaLayeredMtlWriter{u"Corona layered material", kCoronaLayeredRows};
const WriterTable kCoronaLightMtlWriter{u"Corona light material", kCoronaLightMtlRows};
const WriterTable kUvwRandomizerWriter{u"UVW randomizer", kUvwRandomizerRows};
const WriterTable kCoronaMixWriter{u"Corona mix", kCoronaMixRows};
const WriterTable kCoronaMultimapWriter{u"Corona multimap", kCoronaMultimapRows};
const WriterTable kCoronaNormalWriter{u"Corona normal", kCoronaNormalRows};
const WriterTable kCoronaRaySwitchWriter{u"Corona ray switch material", kCoronaRaySwitchRows};
const WriterTable kCoronaRoundEdgeWriter{u"Corona round edge", kCoronaRoundEdgeRows};
const WriterTable kCoronaSelectMapWriter{u"Corona select map", kCoronaSelectMapRows};
const WriterTable kCoronaSelectMtlWriter{u"Corona select material", kCoronaSelectMtlRows};
const WriterTable kCoronaSkinMtlWriter{u"Corona skin material", kCoronaSkinRows};
const WriterTable kCoronaTileWriter{u"Corona tile", kCoronaTileRows};
const WriterTable kCoronaToneMapControlWriter{u"Corona tone-map control", kCoronaToneMapRows};
const WriterTable kCoronaTriplanarWriter{u"Corona triplanar", kCoronaTriplanarRows};
const WriterTable kCoronaWireWriter{u"Corona wire", kCoronaWireRows};
const WriterTable kDoubleSidedWriter{u"Double-sided material", kDoubleSidedRows};
const WriterTable kFalloffWriter{u"Falloff", kFalloffRows};
const WriterTable kScatterColorWriter{u"Scatter colour", kScatterColorRows};
const WriterTable kGltfWriter{u"glTF material", kGltfRows};
const WriterTable kGradientWriter{u"Gradient", kGradientRows};
const WriterTable kGradientRampWriter{u"Gradient Ramp", kGradientRampRows};
const WriterTable kMapToMaterialWriter{u"Map to material", kMapToMaterialRows};
const WriterTable kMaskWriter{u"Mask", kMaskRows};
const WriterTable kOutputSelectorWriter{u"Output selector", kOutputSelectorRows};
const WriterTable kMaterialSwitcherWriter{u"Material switcher", kMaterialSwitcherRows};
const WriterTable kMorpherWriter{u"Morpher material", kMorpherRows};
const WriterTable kMultiTextureWriter{u"MultiTexture", kMultiTextureRows};
const WriterTable kNoiseWriter{u"Noise", kNoiseRows};
const WriterTable kNormalBumpWriter{u"Normal Bump", kNormalBumpRows};
const WriterTable kOutputWriter{u"Output", kOutputRows};
const WriterTable kPbrWriter{u"PBR material", kPbrRows};
const WriterTable kTwoColorWriter{u"Two-colour procedural", kTwoColorRows};
const WriterTable kRgbMultiplyWriter{u"RGB Multiply", kRgbMultiplyRows};
const WriterTable kRgbTintWriter{u"RGB Tint", kRgbTintRows};
const WriterTable kShellMtlWriter{u"Shell material", kShellMtlRows};
const WriterTable kShellacWriter{u"Shellac material", kShellacRows};
const WriterTable kTopBottomWriter{u"Top/bottom material", kTopBottomRows};
const WriterTable kVRay2SidedWriter{u"V-Ray two-sided material", kVRay2SidedRows};
const WriterTable kVRayAlSurfaceWriter{u"V-Ray alSurface material", kVRayAlSurfaceRows};
const WriterTable kVRayBlendMtlWriter{u"V-Ray blend material", kVRayBlendMtlRows};
const WriterTable kVRayCarPaintWriter{u"V-Ray car-paint material", kVRayCarPaintRows};
const WriterTable kVRayColorWriter{u"V-Ray colour", kVRayColorRows};
const WriterTable kVRayCompTexWriter{u"V-Ray composite map", kVRayCompTexRows};
const WriterTable kVRayDirtWriter{u"V-Ray dirt", kVRayDirtRows};
const WriterTable kVRayEdgesWriter{u"V-Ray edges", kVRayEdgesRows};
const WriterTable kVRayFastSssWriter{u"V-Ray fast SSS material", kVRayFastSssRows};
const WriterTable kVRayLightMtlWriter{u"V-Ray light material", kVRayLightMtlRows};
const WriterTable kVRayMultiSubWriter{u"V-Ray multi-sub map", kVRayMultiSubRows};
const WriterTable kVRayNormalWriter{u"V-Ray normal", kVRayNormalRows};
const WriterTable kVRayFlakesWriter{u"V-Ray flakes material", kVRayFlakesRows};
const WriterTable kXRefWriter{u"XRef material", kXRefRows};

}  // namespace orvane
